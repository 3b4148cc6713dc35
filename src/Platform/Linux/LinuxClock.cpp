// SPDX-License-Identifier: MIT
#include "Platform/Linux/LinuxClock.h"

#include <algorithm>
#include <thread>

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>

namespace tovi {

namespace {

QTimer *startTimer(QObject *parent, Clock::Duration delay, std::function<void()> action)
{
    using std::chrono::milliseconds;
    // Timers count whole milliseconds in an int; a delay never ends early.
    const auto whole = std::clamp(std::chrono::ceil<milliseconds>(delay), milliseconds(0),
                                  milliseconds(std::numeric_limits<int>::max()));
    auto *timer = new QTimer(parent);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, action = std::move(action)] {
        timer->deleteLater();
        action();
    });
    timer->start(whole);
    return timer;
}

} // namespace

Clock::Time LinuxClock::now() const
{
    return Time(std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now().time_since_epoch()));
}

Subscription LinuxClock::after(Duration delay, std::function<void()> action)
{
    QPointer<QTimer> timer = startTimer(&m_timers, delay, std::move(action));
    return Subscription([timer] {
        // Not deleted at once: its own action may be what ends it.
        if (timer) {
            timer->stop();
            timer->deleteLater();
        }
    });
}

void LinuxClock::afterDetached(Duration delay, std::function<void()> action)
{
    startTimer(&m_timers, delay, std::move(action));
}

void LinuxClock::wait(Duration duration)
{
    Q_ASSERT(!QCoreApplication::instance() ||
             QThread::currentThread() != QCoreApplication::instance()->thread());
    std::this_thread::sleep_for(duration);
}

} // namespace tovi
