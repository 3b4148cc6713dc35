// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The hosts that the program talks to. An environment variable replaces each, for private gateways.
namespace tovi::Endpoints {

/// Base URL of new OpenAI-compatible engines; TOVI_OPENAI_BASE_URL.
QString openAIBaseURL();
/// Scheme, host and port of the keyless web endpoint; TOVI_GOOGLE_ORIGIN.
QString googleOrigin();
/// What an English word is appended to; TOVI_DICTIONARY_BASE_URL.
QString dictionaryBaseURL();

} // namespace tovi::Endpoints
