// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Controls/IconImage.h"

/// The Lucide icon set.
namespace tovi::Lucide {

/// The icon of a resource name: "Lucide" and the icon's name without hyphens, upper or lower case, as in
/// "LucideArrowUpDown". 24 × 24 points; none when there is no such icon.
IconImage image(const QString &name);
/// The same; where it is missing, the system symbol.
IconImage image(const QString &name, const QString &fallbackSymbol, qreal size);

} // namespace tovi::Lucide
