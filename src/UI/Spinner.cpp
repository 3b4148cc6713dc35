// SPDX-License-Identifier: MIT
#include "UI/Spinner.h"

#include <QPainter>

#include "Platform/Clock.h"
#include "Platform/Platform.h"
#include "UI/Controls/SystemColor.h"

namespace tovi {

namespace {

constexpr int steps = 24;
constexpr std::chrono::milliseconds stepTime{40};
constexpr double thickness = 2; // points

} // namespace

Spinner::Spinner(QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(sizeHint());
}

void Spinner::turn()
{
    m_step = (m_step + 1) % steps;
    update();
    m_nextTurn = Platform::current().clock().after(stepTime, [this] { turn(); });
}

void Spinner::showEvent(QShowEvent *)
{
    turn();
}

void Spinner::hideEvent(QHideEvent *)
{
    m_nextTurn.reset();
}

void Spinner::paintEvent(QPaintEvent *)
{
    constexpr int fullCircle = 16 * 360; // Qt counts in sixteenths of a degree
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(rect()).adjusted(thickness, thickness, -thickness, -thickness);
    QPen pen(SystemColor::separator(palette()), thickness, Qt::SolidLine, Qt::RoundCap);
    painter.setPen(pen);
    painter.drawEllipse(area);
    pen.setColor(SystemColor::secondaryLabel(palette()));
    painter.setPen(pen);
    painter.drawArc(area, -fullCircle * m_step / steps, fullCircle / 4);
}

} // namespace tovi
