// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>

namespace tovi {

class KeyboardFocus;

/// A switch that slides; to assistive programs a check box.
class ToggleSwitch : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget *parent = nullptr);

    QSize sizeHint() const override { return {38, 24}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void nextCheckState() override;
    void paintEvent(QPaintEvent *event) override;

private:
    double knobPlace() const;

    QVariantAnimation m_slide; // runs only for the user's own doing
    KeyboardFocus *m_focus;
};

} // namespace tovi
