// SPDX-License-Identifier: MIT
#include "UI/PanelPlacement.h"

#include <algorithm>

namespace tovi::PanelPlacement {

double panelWidth(double setting)
{
    return std::clamp(setting, minimumWidth, maximumWidth);
}

double panelHeight(double contentHeight, const std::optional<Screen> &mainScreen)
{
    const double cap =
        mainScreen ? std::min(0.7 * mainScreen->visibleFrame.height(), maximumHeight) : maximumHeight;
    return std::min(cap, std::max(contentHeight, minimumHeight));
}

QRectF visibleFrame(QPointF containing, const QList<Screen> &screens, const std::optional<Screen> &mainScreen)
{
    for (const Screen &screen : screens) {
        const QRectF &f = screen.frame;
        if (containing.x() >= f.left() && containing.x() < f.right() && containing.y() >= f.top() &&
            containing.y() < f.bottom())
            return screen.visibleFrame;
    }
    if (mainScreen)
        return mainScreen->visibleFrame;
    return screens.isEmpty() ? QRectF(0, 0, 1440, 900) : screens.first().visibleFrame;
}

QPointF originNear(const QRectF &anchor, QSizeF panel, const QRectF &visible)
{
    double y = anchor.top() - panel.height() - margin;
    if (y < visible.top() + margin)
        y = anchor.bottom() + margin;
    return {
        std::min(visible.right() - panel.width() - margin, std::max(anchor.left(), visible.left() + margin)),
        std::min(visible.bottom() - panel.height() - margin, std::max(y, visible.top() + margin))};
}

QPointF originCentered(QSizeF panel, const QRectF &visible)
{
    return {visible.center().x() - panel.width() / 2, visible.center().y() - panel.height() / 2};
}

QPointF clampedOrigin(const QRectF &panel, const QRectF &visible)
{
    const auto clamped = [](double value, double low, double high) {
        return std::min(std::max(low, high), std::max(value, low));
    };
    return {clamped(panel.left(), visible.left() + margin, visible.right() - panel.width() - margin),
            clamped(panel.top(), visible.top() + margin, visible.bottom() - panel.height() - margin)};
}

} // namespace tovi::PanelPlacement
