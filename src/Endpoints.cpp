// SPDX-License-Identifier: MIT
#include "Endpoints.h"

namespace tovi::Endpoints {

QString openAIBaseURL()
{
    const QString replacement = qEnvironmentVariable("TOVI_OPENAI_BASE_URL");
    return replacement.isEmpty() ? QStringLiteral("https://api.openai.com/v1") : replacement;
}

} // namespace tovi::Endpoints
