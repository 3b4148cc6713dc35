// SPDX-License-Identifier: MIT
#include "Translation/ProviderFactory.h"

#include "Translation/AppleTranslation.h"
#include "Translation/GoogleTranslationProvider.h"
#include "Translation/OpenAICompatibleProvider.h"

namespace tovi {

std::unique_ptr<TranslationProvider> makeProvider(const ProviderConfig &config, const QString &name,
                                                  Clock::Duration timeout)
{
    switch (config.kind) {
    case ProviderKind::google:
        return std::make_unique<GoogleTranslationProvider>(name, timeout);
    case ProviderKind::openAI:
        return std::make_unique<OpenAICompatibleProvider>(config, timeout);
    case ProviderKind::apple:
        break;
    }
    return std::make_unique<AppleTranslationProvider>(name);
}

} // namespace tovi
