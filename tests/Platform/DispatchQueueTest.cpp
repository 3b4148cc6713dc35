// SPDX-License-Identifier: MIT
#include "Platform/DispatchQueue.h"

#include <gtest/gtest.h>

#include "Support/Await.h"

namespace tovi {
namespace {

TEST(DispatchQueue, WhoeverWaitsForWorkThatNeverRunsIsTold)
{
    // A queue may end before its thread has looked at what there is to do.
    for (int i = 0; i < 50; ++i) {
        auto future = DispatchQueue(QStringLiteral("test")).run([] { return 1; });
        try {
            EXPECT_EQ(await(future), 1);
        } catch (const std::future_error &error) {
            EXPECT_EQ(error.code(), std::future_errc::broken_promise);
        }
    }
    QFuture<int> dropped = detail::makePromise<int>()->future();
    EXPECT_THROW(await(dropped), std::future_error);
}

} // namespace
} // namespace tovi
