// SPDX-License-Identifier: MIT
#include "UI/Controls/ProviderIcon.h"

#include <QPainter>

#include "UI/Controls/Lucide.h"
#include "UI/Controls/ProviderLogo.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi {

namespace {

IconImage resolved(const QString &iconName, qreal size)
{
    static const QString logoPrefix = QStringLiteral("logo:");
    IconImage icon;
    if (iconName.startsWith(logoPrefix))
        icon = ProviderLogo::image(iconName.sliced(logoPrefix.size()));
    else
        icon = Lucide::image(iconName);
    return icon.sized({size, size});
}

} // namespace

IconImage ProviderIcon::image(const QString &iconName)
{
    if (const IconImage icon = resolved(iconName, 16))
        return icon;
    return SystemSymbol::image(iconName).sized({16, 16});
}

IconImage ProviderIcon::image(const QString &iconName, qreal size)
{
    if (const IconImage icon = resolved(iconName, size))
        return icon;
    return SystemSymbol::image(iconName, size);
}

ProviderIconView::ProviderIconView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

ProviderIconView::ProviderIconView(const QString &iconName, qreal size, const QColor &color, QWidget *parent)
    : ProviderIconView(parent)
{
    setIcon(iconName, size, color);
}

void ProviderIconView::setIcon(const QString &iconName, qreal size, const QColor &color)
{
    m_image = ProviderIcon::image(iconName, size);
    m_size = size;
    m_color = color;
    updateGeometry();
    update();
}

QSize ProviderIconView::sizeHint() const
{
    return QSizeF(m_size, m_size).expandedTo(m_image.size()).toSize();
}

void ProviderIconView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QSizeF size = m_image.size();
    const QRectF rectangle(QPointF(width() - size.width(), height() - size.height()) / 2, size);
    m_image.paint(painter, rectangle, m_color.isValid() ? m_color : SystemColor::secondaryLabel(palette()));
}

} // namespace tovi
