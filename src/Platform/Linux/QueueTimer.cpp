// SPDX-License-Identifier: MIT
#include "Platform/Linux/QueueTimer.h"

#include <atomic>

#include "Platform/DispatchQueue.h"
#include "Platform/Platform.h"

namespace tovi {

struct QueueTimer::State
{
    DispatchQueue *queue;         // valid while `action` is set
    std::function<void()> action; // the queue's thread
    Subscription scheduled;       // main thread
    std::mutex mutex;             // guards the rest
    int generation = 0;           // of the latest start or stop
    bool isOver = false;
};

QueueTimer::QueueTimer(DispatchQueue &queue, std::function<void()> action)
    : m_state(std::make_shared<State>())
{
    m_state->queue = &queue;
    m_state->action = std::move(action);
}

QueueTimer::~QueueTimer()
{
    stop();
    const std::scoped_lock lock(m_state->mutex);
    m_state->isOver = true;
    m_state->action = nullptr;
}

void QueueTimer::start(Clock::Duration delay)
{
    int generation = 0;
    {
        const std::scoped_lock lock(m_state->mutex);
        generation = ++m_state->generation;
    }
    const Clock::Time due = Platform::current().clock().now() + delay;
    asyncOnMain([state = m_state, generation, due] {
        {
            const std::scoped_lock lock(state->mutex);
            if (state->isOver || state->generation != generation)
                return;
        }
        Clock &clock = Platform::current().clock();
        state->scheduled = clock.after(due - clock.now(), [weak = std::weak_ptr(state), generation] {
            if (const auto armed = weak.lock())
                fire(armed, generation);
        });
    });
}

void QueueTimer::fire(const std::shared_ptr<State> &state, int generation)
{
    const std::scoped_lock lock(state->mutex);
    if (state->isOver || state->generation != generation)
        return;
    state->queue->async([state, generation] {
        {
            const std::scoped_lock inner(state->mutex);
            if (state->isOver || state->generation != generation)
                return;
        }
        const auto action = state->action;
        action();
    });
}

void QueueTimer::stop()
{
    {
        const std::scoped_lock lock(m_state->mutex);
        ++m_state->generation;
    }
    asyncOnMain([state = m_state, generation = m_state->generation] {
        {
            const std::scoped_lock lock(state->mutex);
            if (state->generation != generation)
                return;
        }
        state->scheduled.reset();
    });
}

} // namespace tovi
