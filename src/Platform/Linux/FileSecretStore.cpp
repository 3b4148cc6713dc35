// SPDX-License-Identifier: MIT
#include "Platform/Linux/FileSecretStore.h"

namespace tovi {

FileSecretStore::FileSecretStore(const QString &path, SystemLog &log)
    : m_file(path, log)
{}

QList<FileSecretStore::Entry> FileSecretStore::entries()
{
    QList<Entry> list;
    const QJsonObject services = m_file.read().object;
    for (auto service = services.begin(); service != services.end(); ++service) {
        const QJsonObject accounts = service->toObject();
        for (auto account = accounts.begin(); account != accounts.end(); ++account) {
            const auto decoded = QByteArray::fromBase64Encoding(account->toString().toLatin1());
            if (account->isNull())
                list.append({service.key(), account.key(), std::nullopt});
            else if (account->isString() && decoded)
                list.append({service.key(), account.key(), *decoded});
        }
    }
    return list;
}

std::optional<FileSecretStore::Entry> FileSecretStore::find(const QString &service, const QString &account)
{
    for (const Entry &entry : entries()) {
        if (entry.service == service && entry.account == account)
            return entry;
    }
    return std::nullopt;
}

bool FileSecretStore::put(const Entry &entry)
{
    auto [state, services] = m_file.read();
    if (state == JsonFile::Content::State::Blocked)
        return false;
    QJsonObject accounts = services.value(entry.service).toObject();
    accounts.insert(entry.account,
                    entry.data ? QJsonValue(QString::fromLatin1(entry.data->toBase64())) : QJsonValue());
    services.insert(entry.service, accounts);
    return !m_file.write(services);
}

bool FileSecretStore::drop(const QString &service, const QString &account)
{
    auto [state, services] = m_file.read();
    QJsonObject accounts = services.value(service).toObject();
    if (!accounts.contains(account))
        return true;
    accounts.remove(account);
    services.insert(service, accounts);
    if (accounts.isEmpty())
        services.remove(service);
    if (!services.isEmpty())
        return !m_file.write(services);
    m_file.remove();
    return true;
}

} // namespace tovi
