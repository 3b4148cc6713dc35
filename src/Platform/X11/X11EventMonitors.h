// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/EventMonitors.h"

namespace tovi {

class Clock;
class X11RawInput;

/// Global monitors over the server's raw events, local ones over the toolkit's.
class X11EventMonitors final : public EventMonitors
{
public:
    X11EventMonitors(X11RawInput &rawInput, Clock &clock)
        : m_rawInput(rawInput)
        , m_clock(clock)
    {}
    Subscription addGlobalMouseDownMonitor(std::function<void()> handler) override;
    Subscription addGlobalKeyDownMonitor(quint32 keyCode,
                                         std::function<void(const KeyEvent &)> handler) override;
    Subscription addLocalKeyDownMonitor(std::function<bool(const KeyEvent &)> handler) override;

private:
    X11RawInput &m_rawInput;
    Clock &m_clock;
};

} // namespace tovi
