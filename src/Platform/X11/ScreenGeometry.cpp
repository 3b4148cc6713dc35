// SPDX-License-Identifier: MIT
#include "Platform/X11/ScreenGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

#include <QGuiApplication>
#include <QScreen>

namespace tovi {

namespace {

std::mutex s_mutex;
ScreenGeometry s_current;

double squaredDistance(const QRectF &rect, QPointF point)
{
    const double dx = std::max({rect.left() - point.x(), 0.0, point.x() - rect.right()});
    const double dy = std::max({rect.top() - point.y(), 0.0, point.y() - rect.bottom()});
    return dx * dx + dy * dy;
}

/// Half-open on the far edges, so that a shared edge belongs to one rectangle.
bool holds(const QRectF &rect, QPointF point)
{
    return point.x() >= rect.left() && point.x() < rect.right() && point.y() >= rect.top() &&
           point.y() < rect.bottom();
}

/// Index of the rectangle that holds the point, else of the nearest; -1 without any.
template <class Rects>
int nearest(const Rects &rects, QPointF point)
{
    int best = -1;
    double bestDistance = std::numeric_limits<double>::infinity();
    int index = 0;
    for (const QRectF &rect : rects) {
        if (holds(rect, point))
            return index;
        if (const double distance = squaredDistance(rect, point); distance < bestDistance) {
            bestDistance = distance;
            best = index;
        }
        ++index;
    }
    return best;
}

/// What is left of a screen. A panel between two screens reserves space across the whole of one of them:
/// a strut that would leave nothing is not meant for this screen.
QRect withoutStruts(const QRect &screen, const QList<Strut> &struts, QSize desktop)
{
    QRect rest = screen;
    for (const Strut &strut : struts) {
        const bool vertical = strut.edge == Strut::Edge::Left || strut.edge == Strut::Edge::Right;
        const int first = vertical ? screen.top() : screen.left();
        const int last = vertical ? screen.bottom() : screen.right();
        if (strut.size <= 0 || strut.end < first || strut.start > last)
            continue;
        QRect cut = rest;
        switch (strut.edge) {
        case Strut::Edge::Left:
            cut.setLeft(std::max(cut.left(), strut.size));
            break;
        case Strut::Edge::Right:
            cut.setRight(std::min(cut.right(), desktop.width() - strut.size - 1));
            break;
        case Strut::Edge::Top:
            cut.setTop(std::max(cut.top(), strut.size));
            break;
        case Strut::Edge::Bottom:
            cut.setBottom(std::min(cut.bottom(), desktop.height() - strut.size - 1));
            break;
        }
        if (!cut.isEmpty())
            rest = cut;
    }
    return rest;
}

} // namespace

QRect ScreenGeometry::Display::nativeGeometry() const
{
    return {geometry.topLeft(), (QSizeF(geometry.size()) * scale).toSize()};
}

ScreenGeometry::ScreenGeometry(QList<Display> displays, const QList<Strut> &struts, QSize desktop)
    : m_displays(std::move(displays))
{
    quint32 number = 1;
    for (const Display &display : std::as_const(m_displays)) {
        const QRect native = display.nativeGeometry();
        const QRect visible = withoutStruts(native, struts, desktop);
        const QPointF corner = display.geometry.topLeft();
        const QRectF visiblePoints(corner + QPointF(visible.topLeft() - native.topLeft()) / display.scale,
                                   QSizeF(visible.size()) / display.scale);
        m_screens.append({.frame = fromQt(QRectF(display.geometry)),
                          .visibleFrame = fromQt(visiblePoints) & fromQt(QRectF(display.geometry)),
                          .backingScaleFactor = display.scale,
                          .displayNumber = number++});
    }
}

ScreenGeometry ScreenGeometry::current()
{
    const std::scoped_lock lock(s_mutex);
    return s_current;
}

void ScreenGeometry::publish(ScreenGeometry geometry)
{
    const std::scoped_lock lock(s_mutex);
    s_current = std::move(geometry);
}

QList<ScreenGeometry::Display> ScreenGeometry::qtDisplays()
{
    QList<QScreen *> screens = QGuiApplication::screens();
    screens.removeOne(QGuiApplication::primaryScreen());
    if (auto *primary = QGuiApplication::primaryScreen())
        screens.prepend(primary);
    QList<Display> displays;
    for (const QScreen *screen : std::as_const(screens)) {
        // While no output is connected Qt keeps a placeholder without a size.
        if (!screen->geometry().isEmpty())
            displays.append({screen->geometry(), screen->devicePixelRatio()});
    }
    return displays;
}

int ScreenGeometry::indexOfNative(QPointF point) const
{
    QList<QRectF> rects;
    for (const Display &display : m_displays)
        rects.append(display.nativeGeometry());
    return nearest(rects, point);
}

int ScreenGeometry::indexOf(QPointF point) const
{
    QList<QRectF> rects;
    for (const Display &display : m_displays)
        rects.append(display.geometry);
    return nearest(rects, toQtExact(point));
}

std::optional<Screen> ScreenGeometry::screenAt(QPointF point) const
{
    const int index = indexOf(point);
    return index < 0 ? std::nullopt : std::optional(m_screens[index]);
}

QPointF ScreenGeometry::fromQt(QPointF point) const
{
    if (m_displays.isEmpty())
        return point;
    const QRect &primary = m_displays.first().geometry;
    return {point.x() - primary.x(), primary.y() + primary.height() - point.y()};
}

QRectF ScreenGeometry::fromQt(const QRectF &rect) const
{
    return {fromQt(rect.bottomLeft()), rect.size()};
}

QPointF ScreenGeometry::fromNative(QPointF point) const
{
    const int index = indexOfNative(point);
    if (index < 0)
        return point;
    const QPointF corner = m_displays[index].geometry.topLeft();
    return fromQt(corner + (point - corner) / m_displays[index].scale);
}

QRectF ScreenGeometry::fromNative(const QRectF &rect) const
{
    const int index = indexOfNative(rect.center());
    if (index < 0)
        return rect;
    const QPointF corner = m_displays[index].geometry.topLeft();
    const double scale = m_displays[index].scale;
    return fromQt(QRectF(corner + (rect.topLeft() - corner) / scale, rect.size() / scale));
}

QPointF ScreenGeometry::toQtExact(QPointF point) const
{
    if (m_displays.isEmpty())
        return point;
    const QRect &primary = m_displays.first().geometry;
    return {point.x() + primary.x(), primary.y() + primary.height() - point.y()};
}

QRect ScreenGeometry::toQt(const QRectF &rect) const
{
    const QPointF topLeft = toQtExact({rect.x(), rect.y() + rect.height()});
    // Window coordinates are 16 bits wide on the wire.
    const auto coordinate = [](double value) {
        return int(std::lround(std::clamp(value, -32000.0, 32000.0)));
    };
    const auto extent = [](double value) { return int(std::lround(std::clamp(value, 1.0, 32000.0))); };
    return {coordinate(topLeft.x()), coordinate(topLeft.y()), extent(rect.width()), extent(rect.height())};
}

QPointF ScreenGeometry::toNative(QPointF point) const
{
    return toNative(QRectF(point, QSizeF(0, 0))).topLeft();
}

QRectF ScreenGeometry::toNative(const QRectF &rect) const
{
    const int index = indexOf(rect.center());
    if (index < 0)
        return rect;
    const QPointF corner = m_displays[index].geometry.topLeft();
    const double scale = m_displays[index].scale;
    const QPointF topLeft = toQtExact({rect.x(), rect.y() + rect.height()});
    return {corner + (topLeft - corner) * scale, rect.size() * scale};
}

} // namespace tovi
