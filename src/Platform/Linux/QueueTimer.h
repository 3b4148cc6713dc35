// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "Platform/Clock.h"

namespace tovi {

class DispatchQueue;

/// A one-shot timer of the program's clock whose action runs on a dispatch queue. Used and destroyed on that
/// queue.
class QueueTimer
{
public:
    QueueTimer(DispatchQueue &queue, std::function<void()> action);
    ~QueueTimer();
    QueueTimer(const QueueTimer &) = delete;

    /// Starts it again where it runs already.
    void start(Clock::Duration delay);
    void stop();

private:
    struct State;
    static void fire(const std::shared_ptr<State> &state, int generation);
    std::shared_ptr<State> m_state;
};

} // namespace tovi
