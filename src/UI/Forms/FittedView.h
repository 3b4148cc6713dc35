// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovi {

/// A content of a window that is as high as its wrapped texts need at a fixed width: by themselves windows do
/// not ask how high that is.
class FittedView : public QWidget
{
    Q_OBJECT

public:
    explicit FittedView(int width, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
};

} // namespace tovi
