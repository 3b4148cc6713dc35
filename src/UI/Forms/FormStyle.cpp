// SPDX-License-Identifier: MIT
#include "UI/Forms/FormStyle.h"

#include <cmath>

#include <QApplication>
#include <QPainter>
#include <QWidget>

#include "UI/Controls/SystemColor.h"

namespace tovi::FormStyle {

namespace {

QColor labelShade(const QPalette &palette, double alpha)
{
    QColor color = SystemColor::label(palette);
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

} // namespace

QFont font(int pixels, QFont::Weight weight)
{
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

QColor groupFill(const QPalette &palette)
{
    return SystemColor::isDark(palette) ? labelShade(palette, 0.055) : palette.color(QPalette::Base);
}

QColor controlFill(const QPalette &palette, bool isHovered, bool isPressed)
{
    const double alpha = isPressed ? 0.18 : isHovered ? 0.12 : 0.08;
    return labelShade(palette, alpha);
}

QColor track(const QPalette &palette)
{
    return labelShade(palette, SystemColor::isDark(palette) ? 0.24 : 0.19);
}

double hairline(const QWidget &widget)
{
    const double ratio = widget.devicePixelRatioF();
    return std::max(1.0, std::floor(ratio)) / ratio;
}

void paintGroup(QPainter &painter, const QWidget &widget)
{
    const double line = hairline(widget);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(groupFill(widget.palette()));
    painter.setPen(QPen(SystemColor::separator(widget.palette()), line));
    if (SystemColor::isDark(widget.palette()))
        painter.setPen(Qt::NoPen);
    const double half = line / 2;
    painter.drawRoundedRect(QRectF(widget.rect()).adjusted(half, half, -half, -half), groupRadius,
                            groupRadius);
    painter.restore();
}

void paintField(QPainter &painter, const QWidget &field, bool hasFocus)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = hairline(field);
    painter.setBrush(QApplication::palette().color(QPalette::Base));
    painter.setPen(QPen(SystemColor::separator(field.palette()), line));
    painter.drawRoundedRect(QRectF(field.rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2),
                            controlRadius, controlRadius);
    painter.restore();
    if (hasFocus)
        paintFocusRing(painter, QRectF(field.rect()), controlRadius, field.palette());
}

void paintFocusRing(QPainter &painter, const QRectF &rectangle, double radius, const QPalette &palette)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(SystemColor::accent(palette), 2));
    painter.drawRoundedRect(rectangle.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    painter.restore();
}

} // namespace tovi::FormStyle
