// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/EventMonitors.h"

namespace tovi {

class X11RawInput;

/// Monitors over the server's raw events.
class X11EventMonitors final : public EventMonitors
{
public:
    explicit X11EventMonitors(X11RawInput &rawInput)
        : m_rawInput(rawInput)
    {}
    Subscription addGlobalMouseDownMonitor(std::function<void()> handler) override;

private:
    X11RawInput &m_rawInput;
};

} // namespace tovi
