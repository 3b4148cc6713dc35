// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "UI/Forms/FittedView.h"

namespace tovi {

/// What the program needs to be allowed, told to a new user.
class OnboardingView : public FittedView
{
    Q_OBJECT

public:
    explicit OnboardingView(std::function<void()> onFinish, QWidget *parent = nullptr);
};

} // namespace tovi
