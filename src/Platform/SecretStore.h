// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace tovi {

/// Secrets by service and account. All operations block (bounded) and belong on a worker thread.
class SecretStore
{
public:
    enum class Status {
        Found,
        NotFound,
        Unavailable, ///< locked, unreachable or broken: nothing is known about the item
    };
    struct Item
    {
        Status status = Status::NotFound;
        QByteArray data;
    };

    virtual ~SecretStore() = default;

    virtual Item find(const QString &service, const QString &account) = 0;
    /// Replaces an existing item. False when it could not be stored.
    virtual bool add(const QString &service, const QString &account, const QByteArray &data) = 0;
    /// True also when there was no item.
    virtual bool remove(const QString &service, const QString &account) = 0;
};

} // namespace tovi
