// SPDX-License-Identifier: MIT
#include "UI/Controls/ControlSurface.h"

#include <QFocusEvent>
#include <QPainter>
#include <QWidget>

#include "UI/Controls/SystemColor.h"

namespace tovi::ControlSurface {

namespace {

constexpr double radius = 5;

} // namespace

void paint(QPainter &painter, const QWidget &control, bool isHighlighted, bool showsFocus)
{
    if (!isHighlighted && !showsFocus)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (isHighlighted) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(SystemColor::hover(control.palette()));
        painter.drawRoundedRect(QRectF(control.rect()), radius, radius);
    }
    if (showsFocus) {
        QColor ring = SystemColor::accent(control.palette());
        ring.setAlphaF(0.75F);
        painter.setPen(QPen(ring, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(control.rect()).adjusted(0.75, 0.75, -0.75, -0.75), radius - 0.75,
                                radius - 0.75);
    }
    painter.restore();
}

bool showsFocusAfter(const QFocusEvent &event, bool before)
{
    if (event.lostFocus())
        return before &&
               (event.reason() == Qt::PopupFocusReason || event.reason() == Qt::ActiveWindowFocusReason);
    switch (event.reason()) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        return true;
    case Qt::PopupFocusReason:
    case Qt::ActiveWindowFocusReason:
        return before;
    default:
        return false;
    }
}

} // namespace tovi::ControlSurface
