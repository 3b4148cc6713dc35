// SPDX-License-Identifier: MIT
#include "Platform/Clock.h"

#include <QFuture>
#include <QPromise>
#include <qcorofuture.h>

namespace tovi {

QCoro::Task<> Clock::sleep(Duration delay)
{
    auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    afterDetached(delay, [promise] { promise->finish(); });
    co_await promise->future();
}

} // namespace tovi
