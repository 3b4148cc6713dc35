// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QRectF>

/// Which part of which display a rectangle is. Rectangles and frames in points, origin bottom-left of the
/// primary screen, y up.
namespace tovi::OCRCaptureGeometry {

/// The display that holds most of the rectangle, the first of equals; none when it touches no display.
std::optional<qsizetype> screenIndex(const QRectF &rect, const QList<QRectF> &frames);
/// The rectangle's part on the screen: points, origin at the screen's top-left corner, y down. None where it
/// is not more than one point wide and high.
std::optional<QRectF> localRect(const QRectF &rect, const QRectF &screen);

} // namespace tovi::OCRCaptureGeometry
