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
    filled,   ///< closed shapes are filled, open strokes drawn
    knockout, ///< closed shapes are filled, open strokes cut out of them
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

    /// Fills the rectangle, keeping proportions.
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
    /// Part of the size that the drawing box of the shape takes; more than 1 cuts the empty rim away.
    qreal m_boxScale = 1;
};

} // namespace tovi
