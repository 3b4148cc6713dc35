// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QSlider>

namespace tovi {

class KeyboardFocus;

/// A horizontal slider over whole numbers that moves in steps.
class FormSlider : public QSlider
{
    Q_OBJECT

public:
    FormSlider(int minimum, int maximum, int step, QWidget *parent = nullptr);

    /// Shows a value, limited to the range, without telling anybody.
    void show(double value);
    using QWidget::show;
    /// Runs when the user has moved it, with a value on a step, never for show(value).
    void onMove(std::function<void(int value)> moved);

    QSize sizeHint() const override { return {172, 22}; }
    QSize minimumSizeHint() const override { return {120, 22}; }

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int snapped(double value) const;
    void follow(const QMouseEvent &event);
    double knobCenter() const;

    const int m_step;
    KeyboardFocus *m_focus;
};

} // namespace tovi
