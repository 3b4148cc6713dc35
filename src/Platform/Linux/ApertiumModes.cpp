// SPDX-License-Identifier: MIT
#include "Platform/Linux/ApertiumModes.h"

#include <array>

#include <QDir>
#include <QStringList>

namespace tovi {

namespace {

struct Language
{
    const char *code;    ///< the program's
    const char *aliases; ///< the names that modes use for it, between blanks
};

constexpr std::array<Language, 9> languages{
    Language{"en", " en eng "},     Language{"es", " es spa "},          Language{"fr", " fr fra fre "},
    Language{"de", " de deu ger "}, Language{"ru", " ru rus "},          Language{"ja", " ja jpn "},
    Language{"ko", " ko kor "},     Language{"zh-CN", " zh zho zh_CN "}, Language{"zh-TW", " zh_TW "},
};

struct Pair
{
    const char *source;
    const char *target;
};

/// The directions among the program's languages that packages of Debian and its descendants provide
/// (apertium-eng-spa, apertium-fr-es). Data, not a guess: other pairs have no package there.
constexpr std::array<Pair, 4> packaged{
    Pair{"en", "es"},
    Pair{"es", "en"},
    Pair{"fr", "es"},
    Pair{"es", "fr"},
};

QString codeOf(const QString &modeLanguage)
{
    const QString alias = QLatin1Char(' ') + modeLanguage + QLatin1Char(' ');
    for (const Language &language : languages) {
        if (QLatin1String(language.aliases).contains(alias))
            return QLatin1String(language.code);
    }
    return {};
}

std::optional<QList<ApertiumMode>> findRoute(const QList<ApertiumMode> &modes, const QString &source,
                                             const QString &target)
{
    if (source == target)
        return QList<ApertiumMode>();
    const auto direct = [&](const QString &from, const QString &to) {
        return std::find_if(modes.begin(), modes.end(), [&](const ApertiumMode &mode) {
            return mode.source == from && mode.target == to;
        });
    };
    if (const auto mode = direct(source, target); mode != modes.end())
        return QList{*mode};
    for (const Language &between : languages) {
        const QString code = QLatin1String(between.code);
        const auto first = direct(source, code);
        const auto second = direct(code, target);
        if (first != modes.end() && second != modes.end())
            return QList{*first, *second};
    }
    return std::nullopt;
}

} // namespace

ApertiumModes::ApertiumModes(const QString &folder)
    : m_folder(folder)
{}

QList<ApertiumMode> ApertiumModes::installed() const
{
    const QDir folder(m_folder);
    const QString suffix = QStringLiteral(".mode");
    QList<ApertiumMode> modes;
    for (const QString &file : folder.entryList({QLatin1Char('*') + suffix}, QDir::Files, QDir::Name)) {
        // Names of three parts are variants ("eco-es-fr").
        const QStringList names = file.chopped(suffix.size()).split(QLatin1Char('-'));
        if (names.size() != 2)
            continue;
        const ApertiumMode mode{codeOf(names.first()), codeOf(names.last()), folder.filePath(file)};
        if (!mode.source.isEmpty() && !mode.target.isEmpty())
            modes << mode;
    }
    return modes;
}

std::optional<QList<ApertiumMode>> ApertiumModes::route(const QString &source, const QString &target) const
{
    return findRoute(installed(), source, target);
}

bool ApertiumModes::couldRoute(const QString &source, const QString &target) const
{
    QList<ApertiumMode> modes = installed();
    for (const Pair &pair : packaged)
        modes.append({QLatin1String(pair.source), QLatin1String(pair.target), {}});
    return findRoute(modes, source, target).has_value();
}

} // namespace tovi
