// SPDX-License-Identifier: MIT
#include "Keychain.h"

#include <QStringDecoder>

#include "Platform/Platform.h"
#include "ProviderConfig.h"

namespace tovi::Keychain {

namespace {
const QString service = QStringLiteral("com.brevoll.tovi");
}

bool set(const QString &value, const QString &account)
{
    SecretStore &store = Platform::current().secretStore();
    return value.isEmpty() ? store.remove(service, account) : store.add(service, account, value.toUtf8());
}

Value get(const QString &account)
{
    const auto [status, data] = Platform::current().secretStore().find(service, account);
    if (status != SecretStore::Status::Found)
        return {status, {}};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(data);
    if (decoder.hasError())
        return {};
    return {status, text};
}

QString providerAccount(const QUuid &id)
{
    return QStringLiteral("provider-%1-api-key").arg(canonicalText(id));
}

} // namespace tovi::Keychain
