// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "Platform/Subscription.h"

namespace tovi {

/// A small turning arc: something is under way. Turns only while it is visible.
class Spinner final : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent = nullptr);
    QSize sizeHint() const override { return {16, 16}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void turn();

    Subscription m_nextTurn;
    int m_step = 0;
};

} // namespace tovi
