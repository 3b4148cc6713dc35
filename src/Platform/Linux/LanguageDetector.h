// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

namespace tovi::LanguageDetector {

/// The language that most of `text` is in: one of the program's codes ("zh-CN", "en", ...) or, for a language
/// that the program does not know, its ISO 639 code. None where the text has no words. Looks at the first
/// 20,000 characters. Any thread.
std::optional<QString> dominantLanguage(const QString &text);

} // namespace tovi::LanguageDetector
