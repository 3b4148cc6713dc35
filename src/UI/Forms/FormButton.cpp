// SPDX-License-Identifier: MIT
#include "UI/Forms/FormButton.h"

#include <QKeyEvent>
#include <QPainter>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

FormButton::FormButton(const QString &text, Kind kind, QWidget *parent)
    : QPushButton(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")), parent)
    , m_focus(new KeyboardFocus(this))
{
    setKind(kind);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

void FormButton::setKind(Kind kind)
{
    m_kind = kind;
    setFont(FormStyle::font(kind == Kind::small ? FormStyle::captionSize : FormStyle::bodySize));
    update();
}

QSize FormButton::sizeHint() const
{
    const int side = m_kind == Kind::small ? 9 : 12;
    const int width = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const int height = std::max(fontMetrics().height() + 6, m_kind == Kind::small ? 22 : 26);
    return {width + 2 * side, height};
}

bool FormButton::event(QEvent *event)
{
    // Asked first, a shortcut of the window does not get the key.
    if (event->type() == QEvent::ShortcutOverride && takes(static_cast<QKeyEvent *>(event)->key())) {
        event->accept();
        return true;
    }
    return QPushButton::event(event);
}

bool FormButton::takes(int key) const
{
    return (key == Qt::Key_Return || key == Qt::Key_Enter) && m_focus->isShown();
}

void FormButton::keyPressEvent(QKeyEvent *event)
{
    if (!takes(event->key())) {
        QPushButton::keyPressEvent(event);
        return;
    }
    if (!event->isAutoRepeat())
        click();
}

void FormButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isProminent = m_kind == Kind::prominent && isEnabled();
    QColor background = FormStyle::controlFill(palette(), isEnabled() && underMouse(), isDown());
    QColor color = isEnabled() ? SystemColor::label(palette()) : SystemColor::disabledLabel(palette());
    if (isProminent) {
        background = SystemColor::accent(palette());
        if (isDown() || underMouse())
            background = background.darker(isDown() ? 118 : 107);
        color = palette().color(QPalette::Active, QPalette::HighlightedText);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(QRectF(rect()), FormStyle::controlRadius, FormStyle::controlRadius);
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextHideMnemonic, text());
    if (!m_focus->isShown())
        return;
    FormStyle::paintFocusRing(painter, QRectF(rect()), FormStyle::controlRadius, palette());
    if (isProminent) {
        // The ring's colour is the background's: a light line inside tells them apart.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5), FormStyle::controlRadius - 2,
                                FormStyle::controlRadius - 2);
    }
}

} // namespace tovi
