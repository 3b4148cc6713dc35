// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Platform/Clock.h"
#include "ProviderConfig.h"
#include "Translation/TranslationProvider.h"

namespace tovi {

/// The engine of a configuration. Any thread.
std::unique_ptr<TranslationProvider> makeProvider(const ProviderConfig &config, const QString &name,
                                                  Clock::Duration timeout);

} // namespace tovi
