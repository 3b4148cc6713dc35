// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QImage>
#include <QList>
#include <QRect>

namespace tovi {

/// Where the lines of text are in a picture of a screen, by its edges alone, so that dark and light parts are
/// the same to it. In reading order: columns one after the other, each from top to bottom. The boxes hug the
/// ink. Once stopped, what was found by then. Any thread.
QList<QRect> findTextLines(const QImage &gray, const std::function<bool()> &isStopped);

} // namespace tovi
