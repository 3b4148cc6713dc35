// SPDX-License-Identifier: MIT
#pragma once

namespace tovi {

/// Pictures of the screen. Main thread.
class ScreenCapture
{
public:
    virtual ~ScreenCapture() = default;

    /// Whether this process may record the screen; never prompts.
    virtual bool preflightAccess() = 0;
    /// Asks for access where the desktop asks; returns at once.
    virtual void requestAccess() = 0;
};

} // namespace tovi
