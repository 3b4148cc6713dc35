// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QRectF>

class QPainter;
class QWidget;

/// Measures, fonts and colours that the parts of a form share. Lengths in points.
namespace tovi::FormStyle {

inline constexpr int bodySize = 13;
inline constexpr int captionSize = 11;
inline constexpr int rowHeight = 38;
inline constexpr int rowPadding = 13; ///< at both sides
inline constexpr double groupRadius = 10;
inline constexpr double controlRadius = 6;

/// The application's font at this height.
QFont font(int pixels, QFont::Weight weight = QFont::Normal);

/// Behind the rows of a group.
QColor groupFill(const QPalette &palette);
/// Behind buttons and pickers; darker under the pointer and darker still while pressed.
QColor controlFill(const QPalette &palette, bool isHovered = false, bool isPressed = false);
/// The empty part of a slider, and a switch that is off.
QColor track(const QPalette &palette);

/// A line that is whole device pixels thick, at least one.
double hairline(const QWidget &widget);
/// The rectangle of a group with its thin border.
void paintGroup(QPainter &painter, const QWidget &widget);
/// The background and border of a place for text.
void paintField(QPainter &painter, const QWidget &field, bool hasFocus);
/// A ring just inside the rectangle: the keyboard is here.
void paintFocusRing(QPainter &painter, const QRectF &rectangle, double radius, const QPalette &palette);

} // namespace tovi::FormStyle
