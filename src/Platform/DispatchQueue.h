// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <type_traits>

#include <QFuture>
#include <QPromise>
#include <QString>
#include <QThread>
#include <qcorofuture.h>
#include <qcorotask.h>

namespace tovi {

namespace detail {

template <class T, class Fn>
void fulfil(QPromise<T> &promise, Fn &fn)
{
    try {
        if constexpr (std::is_void_v<T>)
            fn();
        else
            promise.addResult(fn());
    } catch (...) {
        promise.setException(std::current_exception());
    }
    promise.finish();
}

/// Finishes in any case: whoever waits is woken by the end of a promise, too, and would look for a result.
template <class T>
std::shared_ptr<QPromise<T>> makePromise()
{
    const std::shared_ptr<QPromise<T>> promise(new QPromise<T>, [](QPromise<T> *ending) {
        if (!ending->future().isFinished()) {
            ending->setException(
                std::make_exception_ptr(std::future_error(std::future_errc::broken_promise)));
            ending->finish();
        }
        delete ending;
    });
    promise->start();
    return promise;
}

template <class T, class MakeTask>
QCoro::Task<> drive(MakeTask makeTask, std::shared_ptr<QPromise<T>> promise)
{
    try {
        if constexpr (std::is_void_v<T>)
            co_await makeTask();
        else
            promise->addResult(co_await makeTask());
    } catch (...) {
        promise->setException(std::current_exception());
    }
    promise->finish();
}

} // namespace detail

/// A serial queue: one thread with an event loop. Starts its thread with the first piece of work, ends it
/// (after the piece under way) when destroyed. All operations may be called from any thread. The futures
/// finish with a value or with the exception that the work threw; those of work that the queue's end cuts off
/// with std::future_error.
class DispatchQueue
{
public:
    explicit DispatchQueue(const QString &label);
    ~DispatchQueue();
    DispatchQueue(const DispatchQueue &) = delete;

    bool isCurrent() const { return QThread::currentThread() == &m_thread; }

    void async(std::function<void()> work);

    /// Runs a plain function on the queue.
    template <class Fn>
    auto run(Fn fn) -> QFuture<std::invoke_result_t<Fn &>>
    {
        using T = std::invoke_result_t<Fn &>;
        auto promise = detail::makePromise<T>();
        async([promise, fn = std::make_shared<Fn>(std::move(fn))] { detail::fulfil(*promise, *fn); });
        return promise->future();
    }

    /// Starts a coroutine on the queue; it resumes there after every co_await.
    template <class MakeTask>
    auto spawn(MakeTask makeTask) -> QFuture<typename std::invoke_result_t<MakeTask &>::value_type>
    {
        using T = typename std::invoke_result_t<MakeTask &>::value_type;
        auto promise = detail::makePromise<T>();
        async([promise, makeTask = std::make_shared<MakeTask>(std::move(makeTask))] {
            detail::drive<T>(std::move(*makeTask), promise);
        });
        return promise->future();
    }

private:
    QThread m_thread;
    QObject m_context;
    std::once_flag m_started;
};

/// Runs work on the main thread's queue: never at once, in the order of the calls. Any thread.
void asyncOnMain(std::function<void()> work);

/// As DispatchQueue::run(), on the main thread.
template <class Fn>
auto runOnMain(Fn fn) -> QFuture<std::invoke_result_t<Fn &>>
{
    using T = std::invoke_result_t<Fn &>;
    auto promise = detail::makePromise<T>();
    asyncOnMain([promise, fn = std::make_shared<Fn>(std::move(fn))] { detail::fulfil(*promise, *fn); });
    return promise->future();
}

/// As DispatchQueue::spawn(), on the main thread.
template <class MakeTask>
auto spawnOnMain(MakeTask makeTask) -> QFuture<typename std::invoke_result_t<MakeTask &>::value_type>
{
    using T = typename std::invoke_result_t<MakeTask &>::value_type;
    auto promise = detail::makePromise<T>();
    asyncOnMain([promise, makeTask = std::make_shared<MakeTask>(std::move(makeTask))] {
        detail::drive<T>(std::move(*makeTask), promise);
    });
    return promise->future();
}

} // namespace tovi
