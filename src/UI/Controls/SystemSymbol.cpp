// SPDX-License-Identifier: MIT
#include "UI/Controls/SystemSymbol.h"

#include <array>

#include "UI/Controls/IconStore.h"

namespace tovi::SystemSymbol {

namespace {

struct Symbol
{
    const char *name;
    const char *lucideKey;
    IconStyle style = IconStyle::outline;
    int body = 0;             ///< which element of the icon is filled
    double scale = 14.0 / 13; ///< of the drawing box to the font size
    double aspect = 1;        ///< what of the box's width the symbol takes up
};

constexpr auto symbols = std::to_array<Symbol>({
    {"character.book.closed", "booktext"},
    {"character.bubble", "messagesquaretext"},
    {"checkmark", "check"},
    {"checkmark.circle.fill", "circlecheck", IconStyle::knockout},
    {"chevron.down", "chevrondown", IconStyle::outline, 0, 1.25, 0.8},
    {"chevron.right", "chevronright", IconStyle::outline, 0, 1.25, 0.8},
    {"chevron.up.chevron.down", "chevronsupdown", IconStyle::outline, 0, 1.25, 0.8},
    {"cloud", "cloud"},
    {"exclamationmark.triangle.fill", "trianglealert", IconStyle::knockout},
    {"gearshape", "settings"},
    {"info.circle", "info"},
    {"keyboard", "keyboard"},
    {"lock.shield", "shieldcheck"},
    {"minus", "minus"},
    {"pin", "pin"},
    {"pin.fill", "pin", IconStyle::filled, 1},
    {"plus", "plus"},
    {"plus.square.on.square", "copyplus"},
    {"questionmark.circle.fill", "circlequestionmark", IconStyle::knockout},
    {"speaker.wave.2", "volume2"},
    {"speaker.wave.2.fill", "volume2", IconStyle::filled},
    {"square.on.square", "copy"},
    {"xmark", "x", IconStyle::outline, 0, 16.0 / 13},
    {"xmark.circle.fill", "circlex", IconStyle::knockout},
    {"xmark.octagon.fill", "octagonx", IconStyle::knockout, 1},
});

} // namespace

IconImage image(const QString &name, qreal fontSize, IconWeight weight)
{
    const auto symbol = std::find_if(symbols.begin(), symbols.end(), [&](const Symbol &entry) {
        return name == QLatin1StringView(entry.name);
    });
    if (symbol == symbols.end())
        return {};
    const double side = symbol->scale * fontSize;
    return IconStore::lucide(QString::fromLatin1(symbol->lucideKey), {side * symbol->aspect, side},
                             symbol->style, symbol->body, weight);
}

QStringList lucideKeys()
{
    QStringList keys;
    for (const Symbol &symbol : symbols)
        keys << QString::fromLatin1(symbol.lucideKey);
    return keys;
}

} // namespace tovi::SystemSymbol
