// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include "UI/Controls/IconImage.h"

/// The system symbol names the program uses, drawn with icons of the Lucide set.
namespace tovi::SystemSymbol {

/// The symbol as it goes with text of a font size; none for an unknown name or a missing icon.
IconImage image(const QString &name, qreal fontSize = 13, IconWeight weight = IconWeight::regular);

/// The icons of the set that stand for symbols, in lower case without hyphens.
QStringList lucideKeys();

} // namespace tovi::SystemSymbol
