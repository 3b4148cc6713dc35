// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QRectF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace tovi {

enum class IconWeight { regular, semibold };
enum class IconStyle {
    outline,
    filled,   ///< its body is filled, the other strokes are drawn
    knockout, ///< its body is filled, the other strokes are cut out of it
};

/// A template image: a shape without a colour, drawn in the colour its context gives. Cheap to copy and to
/// hold; nothing is read or rendered before it is drawn. Main thread.
class IconImage
{
public:
    /// None.
    IconImage() = default;

    bool isNull() const { return m_name.isEmpty(); }
    explicit operator bool() const { return !isNull(); }
    bool operator==(const IconImage &) const = default;

    /// Its own size, in points.
    QSizeF size() const { return m_size; }
    IconImage sized(QSizeF size) const;
    IconImage weighted(IconWeight weight) const;

    /// As large as fits into the rectangle, in its middle, on whole device pixels.
    void paint(QPainter &painter, const QRectF &rectangle, const QColor &color) const;
    QPixmap pixmap(QSizeF size, const QColor &color, qreal devicePixelRatio) const;
    /// An icon in the application's text colour, for menus and toolbars; follows the palette.
    QIcon icon() const;

private:
    friend class IconStore;

    QString m_name; ///< in the icon store
    QSizeF m_size;
    IconStyle m_style = IconStyle::outline;
    IconWeight m_weight = IconWeight::regular;
    int m_body = 0; ///< which of the icon's elements is filled
};

} // namespace tovi
