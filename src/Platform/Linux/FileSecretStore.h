// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QByteArray>
#include <QList>

#include "Platform/Linux/JsonFile.h"

namespace tovi {

/// Secrets in an owner-only file: they wait there while no key store of the desktop can be used. So does
/// the knowledge that one was removed. Worker threads, one at a time.
class FileSecretStore
{
public:
    struct Entry
    {
        QString service;
        QString account;
        std::optional<QByteArray> data; ///< none: removed
    };

    FileSecretStore(const QString &path, SystemLog &log);

    QString path() const { return m_file.path(); }
    QList<Entry> entries();
    std::optional<Entry> find(const QString &service, const QString &account);
    /// False when it could not be written.
    bool put(const Entry &entry);
    /// Forgets the entry, and the file with the last one.
    bool drop(const QString &service, const QString &account);

private:
    JsonFile m_file;
};

} // namespace tovi
