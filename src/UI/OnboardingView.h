// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QWidget>

namespace tovi {

/// What the program needs to be allowed, told to a new user.
class OnboardingView : public QWidget
{
    Q_OBJECT

public:
    explicit OnboardingView(std::function<void()> onFinish, QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
};

} // namespace tovi
