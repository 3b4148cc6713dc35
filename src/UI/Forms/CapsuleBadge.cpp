// SPDX-License-Identifier: MIT
#include "UI/Forms/CapsuleBadge.h"

#include <QPainter>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"

namespace tovi {

namespace {

QFont badgeFont()
{
    return FormStyle::font(10, QFont::Medium);
}

} // namespace

CapsuleBadge::CapsuleBadge(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize CapsuleBadge::sizeOf(const QString &text)
{
    const QFontMetrics metrics(badgeFont());
    return {metrics.horizontalAdvance(text) + 16, metrics.height() + 5};
}

void CapsuleBadge::paint(QPainter &painter, const QRect &rectangle, const QString &text, const QColor &tint,
                         const QColor &color)
{
    QColor background = tint;
    background.setAlphaF(0.15F);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    const double radius = rectangle.height() / 2.0;
    painter.drawRoundedRect(QRectF(rectangle), radius, radius);
    painter.setPen(color);
    painter.setFont(badgeFont());
    painter.drawText(rectangle, Qt::AlignCenter | Qt::TextSingleLine, text);
    painter.restore();
}

void CapsuleBadge::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paint(painter, rect(), text(), SystemColor::accent(palette()), SystemColor::label(palette()));
}

} // namespace tovi
