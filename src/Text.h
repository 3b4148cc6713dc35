// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

namespace tovi {

/// Whether nothing is left after trimming white space and line breaks of every script (no-break and
/// ideographic spaces count, as in QString::trimmed()).
inline bool isBlank(QStringView text)
{
    return text.trimmed().isEmpty();
}

/// At most the first `count` user-perceived characters.
QStringView firstCharacters(QStringView text, int count);

} // namespace tovi
