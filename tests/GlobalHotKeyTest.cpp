// SPDX-License-Identifier: MIT
#include "GlobalHotKey.h"

#include <gtest/gtest.h>

#include "HotKey.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

TEST(GlobalHotKey, ActionsRunDeferredWhileTheirShortcutIsRegistered)
{
    TestPlatform platform;
    auto &center = platform.hotKeyCenter();
    QList<int> ran;
    const auto make = [&](quint32 keyCode, int number) {
        return GlobalHotKey::make(keyCode, HotKey::option, [&ran, number] { ran << number; });
    };
    center.takenByOthers << TestHotKeyCenter::Keys{2, HotKey::option};

    auto first = make(1, 1);
    EXPECT_FALSE(make(2, 2));
    EXPECT_FALSE(make(1, 3));
    const auto last = make(3, 4);
    ASSERT_TRUE(first && last);
    EXPECT_EQ(last->id(), first->id() + 3);

    for (quint32 number = 0; number <= last->id() + 1; ++number)
        center.handler(number); // refused and unknown numbers too
    EXPECT_TRUE(ran.isEmpty());
    drainMainQueue();
    EXPECT_EQ(ran, (QList<int>{1, 4}));

    const quint32 freed = first->id();
    first.reset();
    EXPECT_FALSE(center.press(1, HotKey::option));
    center.handler(freed); // a press that was already on its way
    first = make(1, 5);
    EXPECT_TRUE(first && center.press(1, HotKey::option));
    drainMainQueue();
    EXPECT_EQ(ran, (QList<int>{1, 4, 5}));
}

} // namespace
} // namespace tovi
