// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>

namespace tovi {

/// Pixels of the screen that are taken around a line's ink.
constexpr int textLineMargin = 3;

/// A line of a screen's ink as a recogniser likes it: dark on light, enlarged, with a border. Any
/// thread.
QImage textLinePicture(const QImage &ink, const QRect &box);

} // namespace tovi
