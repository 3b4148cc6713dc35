// SPDX-License-Identifier: MIT
#include "UI/Controls/IconButton.h"

#include <utility>

#include <QEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPointer>

#include "UI/Controls/ControlSurface.h"
#include "UI/Controls/Lucide.h"
#include "UI/Controls/ProviderIcon.h"
#include "UI/Controls/SystemColor.h"

namespace tovi {

namespace {

/// The button under the pointer: leaving one late must not clear the other's highlight.
QPointer<IconButton> highlightedButton;

} // namespace

IconButton::IconButton(QWidget *parent)
    : IconButton(QSize(24, 24), parent)
{}

IconButton::IconButton(QSize frame, QWidget *parent)
    : QAbstractButton(parent)
    , m_frame(frame)
{
    setFixedSize(frame);
    setFocusPolicy(Qt::TabFocus);
}

IconButton::~IconButton() = default;

void IconButton::setIcon(const QString &name, qreal size, const QColor &color, IconWeight weight)
{
    setImage(ProviderIcon::image(name, size).weighted(weight), color);
}

void IconButton::setIcon(const QString &lucideName, const QString &fallbackSymbol, qreal size,
                         const QColor &color)
{
    setImage(Lucide::image(lucideName, fallbackSymbol, size), color);
}

void IconButton::setImage(const IconImage &image, const QColor &color)
{
    if (m_image == image && m_color == color)
        return;
    m_image = image;
    m_color = color;
    update();
}

void IconButton::setHoverColor(const QColor &color)
{
    m_hoverColor = color;
    update();
}

void IconButton::setHelp(const QString &text)
{
    setToolTip(text);
    if (accessibleName() != text)
        setAccessibleName(text);
}

bool IconButton::isHighlighted() const
{
    return isEnabled() && highlightedButton == this;
}

QSize IconButton::sizeHint() const
{
    return m_frame;
}

bool IconButton::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Hide:
        setHighlighted(false);
        setShowsFocus(false);
        break;
    case QEvent::PaletteChange:
        update();
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void IconButton::enterEvent(QEnterEvent *event)
{
    setHighlighted(true);
    QAbstractButton::enterEvent(event);
}

void IconButton::leaveEvent(QEvent *event)
{
    setHighlighted(false);
    QAbstractButton::leaveEvent(event);
}

void IconButton::focusInEvent(QFocusEvent *event)
{
    setShowsFocus(ControlSurface::showsFocusAfter(*event, m_showsFocus));
    QAbstractButton::focusInEvent(event);
}

void IconButton::focusOutEvent(QFocusEvent *event)
{
    setShowsFocus(ControlSurface::showsFocusAfter(*event, m_showsFocus));
    QAbstractButton::focusOutEvent(event);
}

void IconButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat())
            click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void IconButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    ControlSurface::paint(painter, *this, isHighlighted(), m_showsFocus && hasFocus());
    QColor color = m_color.isValid() ? m_color : SystemColor::secondaryLabel(palette());
    if (isHighlighted() && m_hoverColor.isValid())
        color = m_hoverColor;
    if (!isEnabled())
        color = SystemColor::disabledLabel(palette());
    const QSizeF size = m_image.size();
    m_image.paint(painter, QRectF(QPointF(width() - size.width(), height() - size.height()) / 2, size),
                  isDown() ? color.darker(115) : color);
}

void IconButton::setHighlighted(bool highlighted)
{
    if (highlighted == (highlightedButton == this))
        return;
    const QPointer<IconButton> previous = std::exchange(highlightedButton, highlighted ? this : nullptr);
    update();
    if (previous && previous != this)
        previous->update();
}

void IconButton::setShowsFocus(bool shows)
{
    if (std::exchange(m_showsFocus, shows) != shows)
        update();
}

} // namespace tovi
