// SPDX-License-Identifier: MIT
// Selected texts are foreign: the pieces must cover any of them without gaps, and no reply of a broken
// pipeline may harm.
#include <cstdlib>

#include <QString>

#include "Platform/Linux/ApertiumText.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    using namespace tovi;
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString text = QString::fromUtf8(bytes);
    qsizetype end = 0;
    for (const ApertiumPiece &piece : ApertiumText::split(text, QStringLiteral("en"))) {
        if (piece.start != end || piece.length <= 0)
            std::abort();
        end += piece.length;
        if (!piece.isTranslatable)
            continue;
        const QStringView words = QStringView(text).mid(piece.start, piece.length);
        if (ApertiumText::encoded(words).contains('\0'))
            std::abort();
        ApertiumText::decoded(bytes, words);
    }
    if (end != text.size())
        std::abort();
    return 0;
}
