// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "Platform/Subscription.h"

namespace tovi {

/// Watches what the user does in other applications. Main thread.
class EventMonitors
{
public:
    virtual ~EventMonitors() = default;

    /// Calls when the left or right mouse button goes down over another application, until the subscription
    /// ends. The event itself goes where it would have gone.
    [[nodiscard]] virtual Subscription addGlobalMouseDownMonitor(std::function<void()> handler) = 0;
};

} // namespace tovi
