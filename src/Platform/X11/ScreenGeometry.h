// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

#include "Platform/Workspace.h"

namespace tovi {

/// Space that a desktop panel reserves at an edge of the whole desktop. Device pixels.
struct Strut
{
    enum class Edge { Left, Right, Top, Bottom };
    Edge edge = Edge::Top;
    int size = 0;  ///< from the desktop's edge
    int start = 0; ///< first and last pixel along the edge
    int end = 0;
};

/// The screens at one moment, and the only place that converts between the three systems of coordinates:
/// - the program's: points, origin bottom-left of the primary screen, y up;
/// - Qt's: points, origin top-left of the desktop, y down. Each screen keeps its corner's device pixels and
///   scales from there, so on a scaled desktop there are gaps between screens;
/// - the display server's: device pixels, origin top-left of the desktop, y down.
/// A value; any thread.
class ScreenGeometry
{
public:
    struct Display
    {
        QRect geometry; ///< Qt's
        double scale = 1.0;
        bool operator==(const Display &) const = default;

        QRect nativeGeometry() const;
    };

    ScreenGeometry() = default;
    /// The primary one first; `desktop` is the root window's size.
    ScreenGeometry(QList<Display> displays, const QList<Strut> &struts = {}, QSize desktop = {});

    /// As published last. Any thread.
    static ScreenGeometry current();
    static void publish(ScreenGeometry geometry);
    /// Qt's screens. Main thread.
    static QList<Display> qtDisplays();

    /// The primary screen first.
    const QList<Screen> &screens() const { return m_screens; }
    /// The screen that holds the point, else the nearest; none without screens.
    std::optional<Screen> screenAt(QPointF point) const;

    QPointF fromQt(QPointF point) const;
    QRectF fromQt(const QRectF &rect) const;
    QPointF fromNative(QPointF point) const;
    /// Converts with the scale of the screen that holds the rectangle's centre.
    QRectF fromNative(const QRectF &rect) const;
    /// Whole points for a window: the top-left corner and the size are rounded, so a resized window keeps its
    /// top edge.
    QRect toQt(const QRectF &rect) const;
    QPointF toNative(QPointF point) const;
    QRectF toNative(const QRectF &rect) const;

private:
    QPointF toQtExact(QPointF point) const;
    int indexOfNative(QPointF point) const;
    int indexOf(QPointF point) const;

    QList<Display> m_displays;
    QList<Screen> m_screens;
};

} // namespace tovi
