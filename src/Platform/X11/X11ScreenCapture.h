// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/ScreenCapture.h"

namespace tovi {

/// The display server lets every client see the screen, so there is nothing to ask for.
class X11ScreenCapture final : public ScreenCapture
{
public:
    bool preflightAccess() override { return true; }
    void requestAccess() override {}
};

} // namespace tovi
