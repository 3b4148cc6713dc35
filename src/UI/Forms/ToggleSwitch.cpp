// SPDX-License-Identifier: MIT
#include "UI/Forms/ToggleSwitch.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

ToggleSwitch::ToggleSwitch(QWidget *parent)
    : QAbstractButton(parent)
    , m_focus(new KeyboardFocus(this))
{
    setFixedSize(sizeHint());
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    m_slide.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this] { update(); });
}

void ToggleSwitch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

void ToggleSwitch::nextCheckState()
{
    const double from = knobPlace();
    QAbstractButton::nextCheckState();
    m_slide.stop();
    m_slide.setStartValue(from);
    m_slide.setEndValue(isChecked() ? 1.0 : 0.0);
    m_slide.setDuration(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0 ? 120
                                                                                                    : 0);
    m_slide.start();
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled())
        painter.setOpacity(0.5);
    const double place = knobPlace();
    const QRectF track = QRectF(rect()).adjusted(3, 3, -3, -3);
    const double radius = track.height() / 2;
    painter.setBrush(FormStyle::track(palette()));
    painter.drawRoundedRect(track, radius, radius);
    QColor on = SystemColor::accent(palette());
    on.setAlphaF(static_cast<float>(place));
    painter.setBrush(on);
    painter.drawRoundedRect(track, radius, radius);

    const double side = track.height() - 3;
    const QRectF knob(track.x() + 1.5 + place * (track.width() - side - 3), track.y() + 1.5, side, side);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(knob.translated(0, 0.75));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
    if (m_focus->isShown()) {
        // At a distance: a switch that is on has the ring's colour.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(SystemColor::accent(palette()), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), height() / 2.0,
                                height() / 2.0);
    }
}

double ToggleSwitch::knobPlace() const
{
    if (m_slide.state() == QAbstractAnimation::Running && m_slide.endValue().toDouble() == isChecked())
        return m_slide.currentValue().toDouble();
    return isChecked() ? 1 : 0;
}

} // namespace tovi
