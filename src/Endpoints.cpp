// SPDX-License-Identifier: MIT
#include "Endpoints.h"

namespace tovi::Endpoints {

namespace {

QString replaceable(const char *variable, const QString &usual)
{
    const QString replacement = qEnvironmentVariable(variable);
    return replacement.isEmpty() ? usual : replacement;
}

} // namespace

QString openAIBaseURL()
{
    return replaceable("TOVI_OPENAI_BASE_URL", QStringLiteral("https://api.openai.com/v1"));
}

QString googleOrigin()
{
    return replaceable("TOVI_GOOGLE_ORIGIN", QStringLiteral("https://translate.googleapis.com"));
}

QString dictionaryBaseURL()
{
    return replaceable("TOVI_DICTIONARY_BASE_URL",
                       QStringLiteral("https://api.dictionaryapi.dev/api/v2/entries/en/"));
}

} // namespace tovi::Endpoints
