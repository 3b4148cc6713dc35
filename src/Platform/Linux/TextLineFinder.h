// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QImage>
#include <QList>
#include <QRect>

namespace tovi {

/// The boxes of a line's cells from left to right, all of one height; one where no wide blanks part it.
using TextLine = QList<QRect>;

/// Where the lines of text are in the picture of a screen's ink. In reading order: columns of prose one after
/// the other, each from top to bottom, and the rows of tables and listings across. The boxes hug the ink.
/// Once stopped, what was found by then. Any thread.
QList<TextLine> findTextLines(const QImage &ink, const std::function<bool()> &isStopped);

} // namespace tovi
