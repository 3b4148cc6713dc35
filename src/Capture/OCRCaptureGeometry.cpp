// SPDX-License-Identifier: MIT
#include "Capture/OCRCaptureGeometry.h"

#include <cmath>

namespace tovi::OCRCaptureGeometry {

std::optional<qsizetype> screenIndex(const QRectF &rect, const QList<QRectF> &frames)
{
    const bool isFinite = std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
                          std::isfinite(rect.height());
    if (!isFinite || rect.isEmpty())
        return std::nullopt;
    std::optional<qsizetype> best;
    double largest = 0;
    for (qsizetype i = 0; i < frames.size(); ++i) {
        const QRectF common = rect & frames[i];
        if (const double area = common.width() * common.height(); area > largest) {
            largest = area;
            best = i;
        }
    }
    return best;
}

std::optional<QRectF> localRect(const QRectF &rect, const QRectF &screen)
{
    const QRectF common = rect & screen;
    if (common.width() <= 1 || common.height() <= 1)
        return std::nullopt;
    const double top = screen.y() + screen.height();
    return QRectF(common.x() - screen.x(), top - (common.y() + common.height()), common.width(),
                  common.height());
}

} // namespace tovi::OCRCaptureGeometry
