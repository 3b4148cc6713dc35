// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>

namespace tovi {

/// A line of a screen's ink as a recogniser likes it: dark on light, enlarged, with a border. Any
/// thread.
QImage textLinePicture(const QImage &ink, const QRect &box);

} // namespace tovi
