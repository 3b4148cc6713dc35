// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tovi {

/// Shows the web engines: a streamed answer that grows in the panel, a refused key with its fallback, a word
/// with its dictionary entry. Empty when all of it was seen on the screen; else what was not. Each scene's
/// screenshot lies beside `screenshot`.
QString demonstrateWeb(const QString &tovi, const QString &screenshot);

} // namespace tovi
