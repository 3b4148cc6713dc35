// SPDX-License-Identifier: MIT
#include "UI/Controls/IconImage.h"

#include <cmath>
#include <utility>

#include <QGuiApplication>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>

#include "UI/Controls/IconStore.h"

namespace tovi {

namespace {

/// The square box, `side` pixels wide, in one colour.
QPixmap tinted(const IconImage &icon, int side, const QColor &color)
{
    const QString key = IconStore::cacheKey(icon, side, color);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    QImage image = IconStore::render(icon, side);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    pixmap = QPixmap::fromImage(std::move(image));
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class TemplateIconEngine : public QIconEngine
{
public:
    explicit TemplateIconEngine(IconImage icon)
        : m_icon(std::move(icon))
    {}

    void paint(QPainter *painter, const QRect &rectangle, QIcon::Mode mode, QIcon::State) override
    {
        m_icon.paint(*painter, rectangle, color(mode));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        return m_icon.pixmap(size, color(mode), 1);
    }
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal) override
    {
        return pixmap(size, mode, state);
    }
    QIconEngine *clone() const override { return new TemplateIconEngine(m_icon); }

private:
    static QColor color(QIcon::Mode mode)
    {
        const QPalette palette = QGuiApplication::palette();
        if (mode == QIcon::Selected)
            return palette.color(QPalette::HighlightedText);
        return palette.color(mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active,
                             QPalette::WindowText);
    }

    IconImage m_icon;
};

} // namespace

IconImage IconImage::sized(QSizeF size) const
{
    IconImage image = *this;
    image.m_size = size;
    return image;
}

IconImage IconImage::weighted(IconWeight weight) const
{
    IconImage image = *this;
    image.m_weight = weight;
    return image;
}

void IconImage::paint(QPainter &painter, const QRectF &rectangle, const QColor &color) const
{
    if (isNull() || rectangle.isEmpty() || m_size.isEmpty())
        return;
    const QTransform toDevice = painter.deviceTransform();
    const double scale = std::hypot(toDevice.m11(), toDevice.m12());
    const QSizeF fitting = m_size.scaled(rectangle.size(), Qt::KeepAspectRatio);
    const int side = qRound(std::max(fitting.width(), fitting.height()) * scale);
    // A hostile size must not take the memory with it.
    if (side < 1 || side > 4096)
        return;
    const QPixmap pixmap = tinted(*this, side, color);
    const QPointF center = toDevice.map(rectangle.center());
    const QPointF corner(std::round(center.x() - side / 2.0), std::round(center.y() - side / 2.0));
    painter.save();
    painter.setWorldTransform(QTransform::fromTranslate(corner.x(), corner.y()) * toDevice.inverted() *
                              painter.worldTransform());
    painter.drawPixmap(0, 0, pixmap);
    painter.restore();
}

QPixmap IconImage::pixmap(QSizeF size, const QColor &color, qreal devicePixelRatio) const
{
    QPixmap pixmap((size * devicePixelRatio).toSize());
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(painter, QRectF(QPointF(), size), color);
    return pixmap;
}

QIcon IconImage::icon() const
{
    return isNull() ? QIcon() : QIcon(new TemplateIconEngine(*this));
}

} // namespace tovi
