// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include "Platform/Clock.h"

namespace tovi {

/// The system's monotonic clock; delays are timers of the main event loop, precise to about a millisecond.
class LinuxClock final : public Clock
{
public:
    Time now() const override;
    Subscription after(Duration delay, std::function<void()> action) override;
    void afterDetached(Duration delay, std::function<void()> action) override;
    void wait(Duration duration) override;

private:
    QObject m_timers; // parent of what is still to run
};

} // namespace tovi
