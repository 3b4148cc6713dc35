// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include "Platform/Workspace.h"

/// Where result panels go. Points, origin bottom-left of the primary screen, y up: a rectangle's top() is its
/// lower edge here.
namespace tovi::PanelPlacement {

inline constexpr double minimumWidth = 300;
inline constexpr double maximumWidth = 640;
inline constexpr double minimumHeight = 280;
inline constexpr double maximumHeight = 480;
inline constexpr double margin = 8;

/// The panel's width for the stored setting.
double panelWidth(double setting);
/// The panel's height for the height its content wants, on the main screen.
double panelHeight(double contentHeight, const std::optional<Screen> &mainScreen);

/// The part of a screen that panels may cover: of the screen at the point, else the main one, else the first.
QRectF visibleFrame(QPointF containing, const QList<Screen> &screens,
                    const std::optional<Screen> &mainScreen);

/// Below the anchor with left edges aligned, above it where there is no room, inside the visible frame.
QPointF originNear(const QRectF &anchor, QSizeF panel, const QRectF &visibleFrame);
QPointF originCentered(QSizeF panel, const QRectF &visibleFrame);
/// The nearest origin at which the panel keeps its margins; a panel larger than the frame sticks to the
/// lower-left margin.
QPointF clampedOrigin(const QRectF &panel, const QRectF &visibleFrame);

} // namespace tovi::PanelPlacement
