// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/DispatchQueue.h"
#include "Platform/Observable.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

struct Model : Observable
{
    QList<int> afterChange;
    Published<int> value{this, 1, [this](const int &v) { afterChange << v; }};
};

TEST(Published, AnnouncesEveryAssignmentBeforeTheValueChanges)
{
    Model model;
    QList<int> seen;
    Subscription subscription = model.onWillChange([&] { seen << model.value; });
    model.value = 2;
    model.value = 2;
    EXPECT_EQ(seen, (QList<int>{1, 2}));
    EXPECT_EQ(model.afterChange, (QList<int>{2, 2}));
    subscription.reset();
    model.value = 3;
    EXPECT_EQ(seen.size(), 2);
}

TEST(Subject, HandlersMayEndEachOtherWhileItEmits)
{
    Subject<> subject;
    int calls = 0;
    Subscription second;
    Subscription first = subject.subscribe([&] {
        ++calls;
        second.reset();
        first.reset();
    });
    second = subject.subscribe([&] { calls += 100; });
    subject.emitToAll();
    subject.emitToAll();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(subject.isEmpty());
}

TEST(DispatchQueue, CoroutinesStayOnTheirQueueAndKeepTheTypeOfTheirErrors)
{
    DispatchQueue queue(QStringLiteral("test"));
    auto good = queue.spawn([&queue]() -> QCoro::Task<bool> {
        const bool before = queue.isCurrent();
        const bool onMain = co_await runOnMain(
            [] { return QThread::currentThread() == QCoreApplication::instance()->thread(); });
        co_return before &&onMain &&queue.isCurrent();
    });
    auto bad = queue.spawn([]() -> QCoro::Task<int> {
        co_await runOnMain([] {});
        throw std::out_of_range("kept");
    });
    ASSERT_TRUE(waitUntil([&] { return good.isFinished() && bad.isFinished(); }));
    EXPECT_TRUE(good.result());
    EXPECT_THROW(bad.result(), std::out_of_range);
}

TEST(Platform, SharedInstancesEndNewestFirst)
{
    static QStringList ended;
    struct First
    {
        ~First() { ended << QStringLiteral("first"); }
    };
    struct Second
    {
        First &first = Platform::current().shared<First>();
        ~Second() { ended << QStringLiteral("second"); }
    };
    {
        TestPlatform platform;
        EXPECT_EQ(&platform.shared<Second>().first, &platform.shared<First>());
    }
    EXPECT_EQ(ended, (QStringList{QStringLiteral("second"), QStringLiteral("first")}));
}

} // namespace
} // namespace tovi
