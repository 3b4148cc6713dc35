// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "Platform/Keyboard.h"
#include "Platform/Subscription.h"

namespace tovi {

/// Watches what the user does. Main thread. Each monitor lasts until its subscription ends.
class EventMonitors
{
public:
    virtual ~EventMonitors() = default;

    /// Calls when the left or right mouse button goes down over another application. The event itself goes
    /// where it would have gone.
    [[nodiscard]] virtual Subscription addGlobalMouseDownMonitor(std::function<void()> handler) = 0;
    /// Calls when this one key goes down in another application, repetitions of a held key included. No
    /// other key is looked at. The event itself goes where it would have gone.
    [[nodiscard]] virtual Subscription
    addGlobalKeyDownMonitor(quint32 keyCode, std::function<void(const KeyEvent &)> handler) = 0;
    /// Calls for each key that goes down in a window of this program, before the window gets it; an answer
    /// of true keeps it from the window.
    [[nodiscard]] virtual Subscription
    addLocalKeyDownMonitor(std::function<bool(const KeyEvent &)> handler) = 0;
};

} // namespace tovi
