// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QWidget>

namespace tovi {

/// Dims one display and lets the user drag a rectangle on it. View coordinates: points, origin at the
/// bottom-left corner, y up.
class SelectionView final : public QWidget
{
    Q_OBJECT

public:
    SelectionView();

    std::function<void(const QRectF &rect)> onSelect; ///< view coordinates
    std::function<void()> onCancel;

    /// What is dragged so far; zero while nothing is.
    QRectF selectionRect() const { return m_selectionRect; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QPointF viewPoint(const QMouseEvent &event) const;
    QRectF toWidget(const QRectF &rect) const;
    bool hasSelection() const;
    void dragTo(QPointF point);
    void drawHint(QPainter &painter) const;
    void drawSizeLabel(QPainter &painter) const;
    QString sizeText() const;
    QRectF sizeLabelRect() const; ///< the widget's coordinates
    QRegion markedRegion() const;

    std::optional<QPointF> m_startPoint;
    QRectF m_selectionRect;
};

} // namespace tovi
