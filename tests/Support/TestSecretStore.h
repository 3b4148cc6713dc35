// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>

#include <QStringList>

#include "Platform/SecretStore.h"

namespace tovi {

class TestSecretStore final : public SecretStore
{
public:
    Item find(const QString &service, const QString &account) override
    {
        const std::scoped_lock lock(mutex);
        calls << QStringLiteral("find ") + account;
        if (unavailable)
            return {Status::Unavailable, {}};
        const auto it = items.find({service, account});
        return it == items.end() ? Item{} : Item{Status::Found, it->second};
    }
    bool add(const QString &service, const QString &account, const QByteArray &data) override
    {
        const std::scoped_lock lock(mutex);
        calls << QStringLiteral("add ") + account;
        if (unavailable)
            return false;
        items[{service, account}] = data;
        return true;
    }
    bool remove(const QString &service, const QString &account) override
    {
        const std::scoped_lock lock(mutex);
        calls << QStringLiteral("remove ") + account;
        if (unavailable)
            return false;
        items.erase({service, account});
        return true;
    }

    std::mutex mutex;
    std::map<std::pair<QString, QString>, QByteArray> items;
    QStringList calls;
    bool unavailable = false;
};

} // namespace tovi
