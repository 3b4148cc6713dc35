// SPDX-License-Identifier: MIT
#include "UI/Forms/FormSlider.h"

#include <cmath>

#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

namespace {

constexpr double knobSide = 16;
constexpr double trackHeight = 4;

} // namespace

FormSlider::FormSlider(int minimum, int maximum, int step, QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
    , m_step(step)
    , m_focus(new KeyboardFocus(this))
{
    setRange(minimum, maximum);
    setSingleStep(step);
    setPageStep(5 * step);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
}

void FormSlider::show(double value)
{
    const QSignalBlocker blocker(this);
    // Not onto a step: the first move by the user shall not count twice.
    setValue(static_cast<int>(std::lround(std::clamp<double>(value, minimum(), maximum()))));
    update();
}

void FormSlider::onMove(std::function<void(int)> moved)
{
    connect(this, &QSlider::valueChanged, this, [this, moved = std::move(moved)](int value) {
        const int step = snapped(value);
        show(step);
        moved(step);
    });
}

void FormSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    follow(*event);
}

void FormSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        follow(*event);
}

void FormSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
}

void FormSlider::wheelEvent(QWheelEvent *event)
{
    // The wheel scrolls the form.
    event->ignore();
}

void FormSlider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled())
        painter.setOpacity(0.5);
    const double x = knobCenter();
    const double middle = height() / 2.0;
    const QRectF track(knobSide / 2 - 2, middle - trackHeight / 2, width() - knobSide + 4, trackHeight);
    painter.setBrush(FormStyle::track(palette()));
    painter.drawRoundedRect(track, trackHeight / 2, trackHeight / 2);
    painter.setBrush(SystemColor::accent(palette()));
    painter.drawRoundedRect(QRectF(track.topLeft(), QPointF(x, track.bottom())), trackHeight / 2,
                            trackHeight / 2);

    const QRectF knob(x - knobSide / 2, middle - knobSide / 2, knobSide, knobSide);
    // White on white needs its shadow.
    painter.setBrush(QColor(0, 0, 0, 28));
    painter.drawEllipse(knob.adjusted(-0.5, 0.5, 0.5, 1.5));
    painter.setPen(QPen(QColor(0, 0, 0, 60), 1));
    painter.setBrush(isSliderDown() ? QColor(0xffe8e8ea) : QColor(Qt::white));
    painter.drawEllipse(knob.adjusted(0.5, 0.5, -0.5, -0.5));
    if (m_focus->isShown())
        FormStyle::paintFocusRing(painter, knob.adjusted(-3, -3, 3, 3), knobSide / 2 + 3, palette());
}

int FormSlider::snapped(double value) const
{
    return std::clamp(minimum() + m_step * static_cast<int>(std::lround((value - minimum()) / m_step)),
                      minimum(), maximum());
}

void FormSlider::follow(const QMouseEvent &event)
{
    const double place = (event.position().x() - knobSide / 2) / (width() - knobSide);
    setValue(snapped(minimum() + std::clamp(place, 0.0, 1.0) * (maximum() - minimum())));
}

double FormSlider::knobCenter() const
{
    const double place = maximum() > minimum() ? double(value() - minimum()) / (maximum() - minimum()) : 0;
    return knobSide / 2 + place * (width() - knobSide);
}

} // namespace tovi
