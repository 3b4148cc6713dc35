// SPDX-License-Identifier: MIT
#pragma once

#include <exception>

#include <QByteArray>

#include "Translation/TranslationModels.h"

/// Turns failures of web requests into short messages in the interface language. Any thread.
namespace tovi::ProviderErrorMapper {

/// The message for a failed HTTP status, with what the service says about it.
QString friendlyHTTPError(int status, const QByteArray &body);
/// The error for whatever else went wrong. Its message holds no address, no key and no text of the user's.
TranslationError network(const std::exception_ptr &error);

} // namespace tovi::ProviderErrorMapper
