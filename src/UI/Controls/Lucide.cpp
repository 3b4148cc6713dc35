// SPDX-License-Identifier: MIT
#include "UI/Controls/Lucide.h"

#include "UI/Controls/IconStore.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi::Lucide {

IconImage image(const QString &name)
{
    static const QString prefix = QStringLiteral("Lucide");
    if (!name.startsWith(prefix))
        return {};
    QString key = name.sliced(prefix.size()).remove(QLatin1Char('-')).toLower();
    // The set's own "volume" is a speaker that makes no sound.
    if (key == QStringLiteral("volume"))
        key = QStringLiteral("volume2");
    return IconStore::lucide(key, {24, 24});
}

IconImage image(const QString &name, const QString &fallbackSymbol, qreal size)
{
    const IconImage icon = image(name);
    return icon ? icon.sized({size, size}) : SystemSymbol::image(fallbackSymbol, size);
}

} // namespace tovi::Lucide
