// SPDX-License-Identifier: MIT
#pragma once

#include <QCheckBox>
#include <QVariantAnimation>

namespace tovi {

class KeyboardFocus;

/// A switch: a check box that looks like one that slides.
class ToggleSwitch : public QCheckBox
{
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget *parent = nullptr);

    QSize sizeHint() const override { return {36, 20}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint &point) const override { return rect().contains(point); }
    void keyPressEvent(QKeyEvent *event) override;
    void nextCheckState() override;
    void paintEvent(QPaintEvent *event) override;

private:
    double knobPlace() const;

    QVariantAnimation m_slide; // runs only for the user's own doing
    KeyboardFocus *m_focus;
};

} // namespace tovi
