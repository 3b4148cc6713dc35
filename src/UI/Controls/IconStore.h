// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Controls/IconImage.h"

namespace tovi {

/// The icon files that are built into the program. Nothing of it is touched before the first icon is asked
/// for.
class IconStore
{
public:
    /// By the icon's name in lower case without hyphens.
    static IconImage lucide(const QString &key, QSizeF size, IconStyle style = IconStyle::outline,
                            int body = 0, IconWeight weight = IconWeight::regular);
    static IconImage logo(const QString &name, QSizeF size);

    /// The icon's square drawing box, `side` pixels wide, with the icon in black.
    static QImage render(const IconImage &icon, int side);
    static QString cacheKey(const IconImage &icon, int side, const QColor &color);
};

} // namespace tovi
