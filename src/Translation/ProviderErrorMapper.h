// SPDX-License-Identifier: MIT
#pragma once

#include <exception>

#include <QByteArray>

#include "Translation/TranslationModels.h"

/// Turns failures of web requests into short messages in the interface language. Any thread.
namespace tovi::ProviderErrorMapper {

/// The message for a failed HTTP status, with what the service says about it, but for the key.
QString friendlyHTTPError(int status, const QByteArray &body, const QString &apiKey = {});
/// What a service says, with dots for the key: services repeat what they refuse.
QString withoutKey(QString message, const QString &apiKey);
/// The error for whatever else went wrong. Its message holds no address, no key and no text of the user's.
TranslationError network(const std::exception_ptr &error);

} // namespace tovi::ProviderErrorMapper
