// SPDX-License-Identifier: MIT
#include "Platform/Linux/MenuItemText.h"

#include <algorithm>

#include <QStringList>

namespace tovi::MenuItemText {

namespace {

/// Longer ones are no menu item's: nobody needs to take them apart.
constexpr qsizetype lengthLimit = 1000;

bool isOneCharacter(const QString &key)
{
    return key.size() == 1 && key.at(0).isLetterOrNumber();
}

bool isControl(const QString &modifier)
{
    static const QStringList names{QStringLiteral("ctrl"), QStringLiteral("control"),
                                   QStringLiteral("primary"), QStringLiteral("strg")};
    return names.contains(modifier.trimmed().toLower());
}

/// "<Primary><Shift>c" or "Ctrl+Shift+C", taken apart; the last one is the key.
QStringList keys(QString accelerator)
{
    if (accelerator.startsWith(QLatin1Char('<'))) {
        accelerator.remove(QLatin1Char('<'));
        return accelerator.split(QLatin1Char('>'));
    }
    return accelerator.split(QLatin1Char('+'));
}

/// East Asian titles show the mnemonic behind the words: "(C)".
void removeMnemonicAtEnd(QString &title)
{
    const qsizetype length = title.size();
    if (length < 4)
        return;
    const QChar open = title.at(length - 3);
    const QChar close = title.at(length - 1);
    const bool inBrackets = (open == QLatin1Char('(') && close == QLatin1Char(')')) ||
                            (open == QChar(0xFF08) && close == QChar(0xFF09));
    if (inBrackets && title.at(length - 2).isLetterOrNumber())
        title = title.left(length - 3).trimmed();
}

} // namespace

QString title(const QString &name)
{
    const QString shown = name.left(lengthLimit).section(QLatin1Char('\t'), 0, 0).trimmed();
    QString title;
    for (qsizetype i = 0; i < shown.size(); ++i) {
        const QChar mark = shown.at(i);
        // A mark that stands twice is the character itself.
        const bool isMark = (mark == QLatin1Char('&') || mark == QLatin1Char('_')) && i + 1 < shown.size() &&
                            (shown.at(i + 1).isLetterOrNumber() || shown.at(i + 1) == mark);
        title += isMark ? shown.at(++i) : mark;
    }
    removeMnemonicAtEnd(title);
    return title;
}

std::optional<QString> commandCharacter(const QString &keyBinding)
{
    if (keyBinding.size() > lengthLimit)
        return std::nullopt;
    // Mnemonics come first, in fields of their own.
    for (const QString &accelerator : keyBinding.split(QLatin1Char(';'))) {
        if (accelerator.contains(QLatin1Char(','))) // several keys one after the other
            continue;
        QStringList modifiers = keys(accelerator.trimmed());
        const QString key = modifiers.takeLast().trimmed();
        if (isOneCharacter(key) && std::any_of(modifiers.cbegin(), modifiers.cend(), isControl))
            return key.toUpper();
    }
    return std::nullopt;
}

} // namespace tovi::MenuItemText
