// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace tovi {

/// The languages that texts can be translated into, in the order of the menus.
enum class TargetLanguage { zhHans, zhHant, en, ja, ko, fr, de, es, ru };

namespace TargetLanguages {
const QList<TargetLanguage> &all();
/// The language code: "zh-CN", "en", ...
QString rawValue(TargetLanguage language);
std::optional<TargetLanguage> fromRawValue(const QString &code);
/// The English name of a code; an unknown code is returned unchanged.
QString name(const QString &code);
/// The language's own name; an unknown code is returned unchanged.
QString ownName(const QString &code);
} // namespace TargetLanguages

} // namespace tovi
