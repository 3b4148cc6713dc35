// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <stdexcept>

#include <QFuture>
#include <qcorofuture.h>
#include <qcorotask.h>

#include "Support/TestClock.h"

namespace tovi {

namespace detail {

template <class T>
struct Awaited
{
    std::optional<T> value;
    std::exception_ptr error;
};

template <class T>
QCoro::Task<> watch(QCoro::Task<T> task, std::shared_ptr<Awaited<T>> awaited)
{
    try {
        awaited->value = co_await task;
    } catch (...) {
        awaited->error = std::current_exception();
    }
}

} // namespace detail

/// Delivers main-thread events until the task has ended; throws what it threw.
template <class T>
T await(QCoro::Task<T> task)
{
    const auto awaited = std::make_shared<detail::Awaited<T>>();
    detail::watch(std::move(task), awaited);
    if (!waitUntil([&] { return awaited->value || awaited->error; }))
        throw std::runtime_error("the task did not end");
    if (awaited->error)
        std::rethrow_exception(awaited->error);
    return *awaited->value;
}

template <class T>
T await(QFuture<T> future)
{
    if (!waitUntil([&] { return future.isFinished(); }))
        throw std::runtime_error("the future did not finish");
    return future.result();
}

/// The error that the task ends with, none when it succeeds.
template <class Error, class T>
std::optional<Error> errorOf(QCoro::Task<T> task)
{
    try {
        await(std::move(task));
        return std::nullopt;
    } catch (const Error &error) {
        return error;
    }
}

} // namespace tovi
