// SPDX-License-Identifier: MIT
#include "Platform/Linux/LocaleNames.h"

#include <algorithm>

namespace tovi::LocaleNames {

Parts split(const QString &locale)
{
    Parts parts;
    const QString name = locale.section(QLatin1Char('@'), 0, 0).section(QLatin1Char('.'), 0, 0);
    parts.language = name.section(QLatin1Char('_'), 0, 0).toLower();
    const auto isLetter = [](QChar c) { return c.unicode() < 128 && c.isLetter(); };
    const bool known = parts.language.size() >= 2 && parts.language.size() <= 8 &&
                       std::ranges::all_of(parts.language, isLetter) &&
                       parts.language != QLatin1String("posix");
    if (!known)
        return {};
    parts.territory = name.section(QLatin1Char('_'), 1, 1).toUpper();
    parts.modifier = locale.section(QLatin1Char('@'), 1, 1);
    return parts;
}

QStringList messageLocales()
{
    QStringList locales = qEnvironmentVariable("LANGUAGE").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const QString value = qEnvironmentVariable(name);
        if (!value.isEmpty()) {
            locales << value;
            break;
        }
    }
    return locales;
}

QString bcp47(const QString &locale)
{
    const Parts parts = split(locale);
    if (parts.language.isEmpty())
        return QStringLiteral("en");
    QStringList subtags{parts.language};
    if (parts.language == QLatin1String("zh")) {
        static const QStringList traditional{QStringLiteral("TW"), QStringLiteral("HK"),
                                             QStringLiteral("MO")};
        subtags << (traditional.contains(parts.territory) ? QStringLiteral("Hant") : QStringLiteral("Hans"));
    } else if (parts.modifier == QLatin1String("latin")) {
        subtags << QStringLiteral("Latn");
    } else if (parts.modifier == QLatin1String("cyrillic")) {
        subtags << QStringLiteral("Cyrl");
    }
    if (!parts.territory.isEmpty())
        subtags << parts.territory;
    return subtags.join(QLatin1Char('-'));
}

} // namespace tovi::LocaleNames
