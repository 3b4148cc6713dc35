// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace tovi {

/// A stretch of a text: either words for a pipeline or something that no pipeline ever sees.
struct ApertiumPiece
{
    qsizetype start = 0; ///< UTF-16 units
    qsizetype length = 0;
    bool isTranslatable = false;
};

/// Cuts texts into what Apertium can translate and what must come back as it is, and speaks Apertium's stream
/// format for the former. Everything that has a meaning in that format, every line break, blank run, address
/// and foreign script stays outside, so it cannot be lost, moved or misread. Any thread.
namespace ApertiumText {

/// The pieces of `text` in order, without gaps. `language` is the program's code of the text's language.
QList<ApertiumPiece> split(const QString &text, const QString &language);
/// The message for one translatable piece, without the terminating NUL.
QByteArray encoded(QStringView piece);
/// The translation in a reply, without the terminating NUL; the piece itself where the reply holds none.
QString decoded(const QByteArray &reply, QStringView piece);

} // namespace ApertiumText

} // namespace tovi
