// SPDX-License-Identifier: MIT
#pragma once

#include <span>

#include "Localization/Str.h"

namespace tovi {

/// One line of a language's table. The text is UTF-8.
struct LocalizedText
{
    Str key;
    const char *text;
};

using LocalizationTable = std::span<const LocalizedText>;

LocalizationTable englishTable();
LocalizationTable simplifiedChineseTable();
LocalizationTable traditionalChineseTable();
LocalizationTable japaneseTable();
LocalizationTable koreanTable();
LocalizationTable frenchTable();
LocalizationTable germanTable();
LocalizationTable spanishTable();
LocalizationTable russianTable();

} // namespace tovi
