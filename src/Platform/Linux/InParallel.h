// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <exception>
#include <latch>
#include <mutex>

#include <QThreadPool>

namespace tovi {

/// Runs work(0) to work(count - 1) here and, as far as the pool has threads to spare, there.
template <class Work>
void inParallel(QThreadPool &pool, int count, const Work &work)
{
    std::atomic_int next = 0;
    std::exception_ptr error;
    std::once_flag failed;
    const auto loop = [&] {
        try {
            for (int i = next++; i < count; i = next++)
                work(i);
        } catch (...) {
            next = count;
            std::call_once(failed, [&] { error = std::current_exception(); });
        }
    };
    std::latch helperEnd(1);
    const bool hasHelper = count > 1 && pool.tryStart([&] {
        loop();
        helperEnd.count_down();
    });
    loop();
    if (hasHelper)
        helperEnd.wait();
    if (error)
        std::rethrow_exception(error);
}

} // namespace tovi
