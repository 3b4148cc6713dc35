// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

#include "Platform/Subscription.h"

namespace tovi {

/// The one source of time. Tests replace it, so nothing in the program waits by other means.
class Clock
{
public:
    using Duration = std::chrono::nanoseconds;
    /// Monotonic; the epoch is arbitrary.
    using Time = std::chrono::time_point<Clock, Duration>;
    static constexpr Time distantPast() { return Time(Duration::min() / 2); }

    virtual ~Clock() = default;

    /// Any thread.
    virtual Time now() const = 0;
    /// Runs `action` once on the main queue after `delay`, unless the subscription ends before. Main thread.
    [[nodiscard]] virtual Subscription after(Duration delay, std::function<void()> action) = 0;
    /// As after(), for work that nobody cancels; the action must hold its owner weakly.
    virtual void afterDetached(Duration delay, std::function<void()> action) = 0;
    /// Blocks the calling thread, which must not be the main thread (capture queue only).
    virtual void wait(Duration duration) = 0;
};

inline double seconds(Clock::Duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace tovi
