// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QStringList>

#include "Support/SampleSentences.h"

class QRandomGenerator;

namespace tovi {

struct TextStyle
{
    QString family;
    int pixelSize = 13;
    bool isDark = false;
    bool isBold = false;
};

/// A made piece of a screen, and what it says.
struct TextPicture
{
    QImage image;
    QString text; ///< one line of the picture a line
    TextKind kind = TextKind::english;
    TextStyle style;
};

constexpr QSize textPictureSize(720, 260);

/// A picture full of interface text. Equal seeds make equal pictures.
TextPicture makeTextPicture(TextKind kind, quint32 seed);
/// As above, of lines of the caller's; those that do not fit are left out.
TextPicture drawText(TextKind kind, const QStringList &lines, const TextStyle &style,
                     QSize size = textPictureSize);
/// A font for the kind, 11 to 16 pixels, light or dark.
TextStyle randomTextStyle(TextKind kind, QRandomGenerator &random);

/// Character errors of a reading: insertions, deletions and substitutions, and the length of what was to
/// read. Runs of blanks count as one, and those beside ideographs or line ends as none.
struct ReadingErrors
{
    qsizetype errors = 0;
    qsizetype length = 0;

    double rate() const { return length ? double(errors) / double(length) : 0; }
    ReadingErrors &operator+=(const ReadingErrors &other);
};
ReadingErrors compareReading(const QString &expected, const QString &read);

} // namespace tovi
