// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace tovi::LocaleNames {

/// The fields of "language_TERRITORY.codeset@modifier"; the codeset is dropped. Without a language for "C"
/// and "POSIX".
struct Parts
{
    QString language;
    QString territory;
    QString modifier;
};
Parts split(const QString &locale);

/// The user's locales for messages, most wanted first, from LANGUAGE and then the first set of LC_ALL,
/// LC_MESSAGES and LANG.
QStringList messageLocales();

/// "zh_TW.UTF-8" to "zh-Hant-TW"; "C", "POSIX" and nonsense to "en".
QString bcp47(const QString &locale);

} // namespace tovi::LocaleNames
