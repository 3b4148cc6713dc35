// SPDX-License-Identifier: MIT
#include "Text.h"

#include <QTextBoundaryFinder>

namespace tovi {

QStringView firstCharacters(QStringView text, int count)
{
    // The finder looks at all it is given. Whoever writes more than this many marks on one character does
    // not mean to be read.
    constexpr int unitsPerCharacter = 64;
    text = text.first(std::min(text.size(), qsizetype(count) * unitsPerCharacter));
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    qsizetype end = 0;
    for (int i = 0; i < count && end < text.size(); ++i) {
        const qsizetype next = finder.toNextBoundary();
        if (next < 0)
            break;
        end = next;
    }
    return text.first(end);
}

} // namespace tovi
