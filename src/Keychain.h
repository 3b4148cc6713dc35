// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUuid>

#include "Platform/SecretStore.h"

/// The program's secrets in the desktop's key store, by account. Blocks (bounded): worker threads only.
namespace tovi::Keychain {

struct Value
{
    SecretStore::Status status = SecretStore::Status::NotFound;
    QString text; ///< empty unless found
};

/// The empty text removes the item. False when the store could not do it.
bool set(const QString &value, const QString &account);
/// An item that is no text counts as not found.
Value get(const QString &account);

/// The account of an engine's API key.
QString providerAccount(const QUuid &id);
/// The account of the one API key that early versions knew.
inline const QString legacyAccount = QStringLiteral("openai-api-key");

} // namespace tovi::Keychain
