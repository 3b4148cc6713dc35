// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

#include "Platform/Clock.h"

namespace tovi {

/// A clock that moves only when a test says so. Delayed actions run inside advance(), on the calling thread.
class TestClock final : public Clock
{
public:
    Time now() const override;
    Subscription after(Duration delay, std::function<void()> action) override;
    void afterDetached(Duration delay, std::function<void()> action) override;
    /// Moves the clock forward by itself: a worker's wait costs a test no time.
    void wait(Duration duration) override;
    std::function<void(Duration)> onWait; ///< what happens during a worker's wait; set before it begins

    /// Moves time forward, running due actions in order of their times, and delivering queued main-thread
    /// work after each.
    void advance(Duration duration);
    int pendingActions() const;

private:
    using Key = std::pair<Time, int>;
    Key schedule(Duration delay, std::function<void()> action);

    struct State
    {
        mutable std::mutex mutex;
        Time now{std::chrono::hours(1)};
        int nextNumber = 0;
        std::map<Key, std::function<void()>> actions;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// Delivers main-thread events until `done` answers true. False when that did not happen within a generous
/// real-time limit (so that a broken test ends).
bool waitUntil(const std::function<bool()> &done);
/// Delivers what is queued on the main thread now.
void drainMainQueue();

} // namespace tovi
