// SPDX-License-Identifier: MIT
#include "UI/SelectionView.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "Localization.h"
#include "UI/Controls/SystemColor.h"

namespace tovi {

namespace {

// Points.
constexpr double smallestDrag = 8;
constexpr QSizeF clickArea{360, 140};
constexpr double outlineWidth = 1.5;
constexpr double labelGap = 6;
constexpr double labelEdge = 8;
constexpr QSizeF labelPadding{12, 8};
constexpr double labelRadius = 5;
constexpr QSizeF hintPadding{36, 24};
constexpr double hintRadius = 9;

QColor black(double alpha)
{
    return QColor::fromRgbF(0, 0, 0, float(alpha));
}
const QColor dimming = black(0.32);
const QColor labelGround = black(0.7);
const QColor hintGround = black(0.65);

QFont systemFont(const QFont &font, int pixels)
{
    QFont sized = font;
    sized.setPixelSize(pixels);
    sized.setWeight(QFont::Medium);
    return sized;
}

QSizeF textSize(const QFont &font, const QString &text)
{
    const QFontMetricsF metrics(font);
    return {std::ceil(metrics.horizontalAdvance(text)), std::ceil(metrics.height())};
}

void drawPlate(QPainter &painter, const QRectF &rect, double radius, const QColor &ground, const QFont &font,
               const QString &text)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(rect, radius, radius);
    painter.setPen(Qt::white);
    painter.setFont(font);
    painter.drawText(rect, Qt::AlignCenter, text);
}

} // namespace

SelectionView::SelectionView()
{
    setCursor(Qt::CrossCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(Localization::shared().t(Str::ocrHint));
}

QPointF SelectionView::viewPoint(const QMouseEvent &event) const
{
    // The pointer is on a pixel; on the last one it is at the edge.
    const double pixel = 1 / devicePixelRatioF();
    const auto place = [pixel](double at, double end) {
        return at + pixel > end - 0.01 ? std::max(at, end) : at;
    };
    return {place(event.position().x(), width()), height() - place(event.position().y(), height())};
}

QRectF SelectionView::toWidget(const QRectF &rect) const
{
    return {rect.x(), height() - rect.y() - rect.height(), rect.width(), rect.height()};
}

bool SelectionView::hasSelection() const
{
    return m_selectionRect.width() >= 1 && m_selectionRect.height() >= 1;
}

void SelectionView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton) {
        if (const auto cancel = onCancel)
            cancel();
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    m_startPoint = viewPoint(*event);
    m_selectionRect = {};
    update();
}

void SelectionView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        dragTo(viewPoint(*event));
}

void SelectionView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_startPoint)
        return;
    const QPointF point = viewPoint(*event);
    dragTo(point);
    QRectF selected = m_selectionRect;
    if (selected.width() < smallestDrag || selected.height() < smallestDrag) {
        const QPointF corner = point - QPointF(clickArea.width(), clickArea.height()) / 2;
        selected = QRectF(corner, clickArea) & QRectF(rect());
    }
    m_startPoint.reset();
    if (const auto select = onSelect)
        select(selected);
}

void SelectionView::dragTo(QPointF point)
{
    if (!m_startPoint)
        return;
    const bool wasSelecting = hasSelection();
    const QRegion before = markedRegion();
    m_selectionRect = QRectF(*m_startPoint, point).normalized();
    // The hint comes and goes with the selection.
    if (wasSelecting && hasSelection())
        update(before | markedRegion());
    else
        update();
}

/// What a change of the selection changes on the screen: all of it, with outline and label.
QRegion SelectionView::markedRegion() const
{
    const QRect outline = toWidget(m_selectionRect).toAlignedRect().adjusted(-2, -2, 2, 2);
    return QRegion(outline) | sizeLabelRect().toAlignedRect();
}

void SelectionView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape)
        QWidget::keyPressEvent(event);
    else if (const auto cancel = onCancel)
        cancel();
}

void SelectionView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all = rect();
    if (!hasSelection()) {
        painter.fillRect(all, dimming);
        drawHint(painter);
        return;
    }
    const QRectF clear = toWidget(m_selectionRect);
    painter.fillRect(QRectF(all.topLeft(), QPointF(all.right(), clear.top())), dimming);
    painter.fillRect(QRectF(QPointF(all.left(), clear.bottom()), all.bottomRight()), dimming);
    painter.fillRect(QRectF(QPointF(all.left(), clear.top()), clear.bottomLeft()), dimming);
    painter.fillRect(QRectF(clear.topRight(), QPointF(all.right(), clear.bottom())), dimming);
    painter.setPen(
        QPen(SystemColor::accent(palette()), outlineWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(clear);
    drawSizeLabel(painter);
}

void SelectionView::drawHint(QPainter &painter) const
{
    const QString hint = Localization::shared().t(Str::ocrHint);
    const QFont font = systemFont(this->font(), 15);
    QRectF plate(QPointF(), textSize(font, hint) + hintPadding);
    plate.moveCenter(QRectF(rect()).center());
    drawPlate(painter, plate, hintRadius, hintGround, font, hint);
}

QString SelectionView::sizeText() const
{
    return QStringLiteral("%1 \u00d7 %2")
        .arg(int(m_selectionRect.width()))
        .arg(int(m_selectionRect.height()));
}

QRectF SelectionView::sizeLabelRect() const
{
    const QSizeF text = textSize(systemFont(font(), 11), sizeText());
    const QSizeF size = text + labelPadding;
    double bottom = m_selectionRect.bottom() + labelGap; // the selection's upper edge: y is up
    if (bottom + size.height() > height() - labelEdge)
        bottom = m_selectionRect.top() - text.height() - 14;
    return toWidget(QRectF(QPointF(m_selectionRect.left(), bottom), size));
}

void SelectionView::drawSizeLabel(QPainter &painter) const
{
    drawPlate(painter, sizeLabelRect(), labelRadius, labelGround, systemFont(font(), 11), sizeText());
}

} // namespace tovi
