// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tovi {

/// The identifier by which the program knows a browser, from its desktop entry's id or its window class (any
/// case); empty for everything else.
QString browserIdentifier(const QString &desktopIdOrClass);

} // namespace tovi
