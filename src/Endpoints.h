// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The hosts that the program talks to.
namespace tovi::Endpoints {

/// Base URL of new OpenAI-compatible engines; TOVI_OPENAI_BASE_URL replaces it.
QString openAIBaseURL();

} // namespace tovi::Endpoints
