// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovi {

/// The program's logo, sharp at every scale.
class LogoView : public QWidget
{
    Q_OBJECT

public:
    /// Its side in points.
    explicit LogoView(int side, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tovi
