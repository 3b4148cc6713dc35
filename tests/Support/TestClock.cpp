// SPDX-License-Identifier: MIT
#include "Support/TestClock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

namespace tovi {

Clock::Time TestClock::now() const
{
    const std::scoped_lock lock(m_state->mutex);
    return m_state->now;
}

TestClock::Key TestClock::schedule(Duration delay, std::function<void()> action)
{
    const std::scoped_lock lock(m_state->mutex);
    const Key key{m_state->now + delay, m_state->nextNumber++};
    m_state->actions.emplace(key, std::move(action));
    return key;
}

Subscription TestClock::after(Duration delay, std::function<void()> action)
{
    const Key key = schedule(delay, std::move(action));
    return Subscription([state = m_state, key] {
        const std::scoped_lock lock(state->mutex);
        state->actions.erase(key);
    });
}

void TestClock::afterDetached(Duration delay, std::function<void()> action)
{
    schedule(delay, std::move(action));
}

void TestClock::wait(Duration duration)
{
    if (onWait)
        onWait(duration);
    const std::scoped_lock lock(m_state->mutex);
    m_state->now += duration;
}

void TestClock::advance(Duration duration)
{
    drainMainQueue();
    const Time end = now() + duration;
    for (;;) {
        std::function<void()> action;
        {
            const std::scoped_lock lock(m_state->mutex);
            const auto first = m_state->actions.begin();
            if (first == m_state->actions.end() || first->first.first > end)
                break;
            m_state->now = std::max(m_state->now, first->first.first);
            action = std::move(first->second);
            m_state->actions.erase(first);
        }
        action();
        drainMainQueue();
    }
    const std::scoped_lock lock(m_state->mutex);
    m_state->now = std::max(m_state->now, end);
}

int TestClock::pendingActions() const
{
    const std::scoped_lock lock(m_state->mutex);
    return static_cast<int>(m_state->actions.size());
}

void drainMainQueue()
{
    for (int i = 0; i < 8; ++i)
        QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool waitUntil(const std::function<bool()> &done)
{
    const QDeadlineTimer limit(std::chrono::seconds(30));
    while (!done()) {
        if (limit.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::yieldCurrentThread();
    }
    return true;
}

} // namespace tovi
