// SPDX-License-Identifier: MIT
#include "GlobalHotKey.h"

#include <gtest/gtest.h>

#include "HotKey.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

constexpr quint32 keyD = 2;
constexpr quint32 keyS = 1;

struct GlobalHotKeyTest : testing::Test
{
    auto action(int number)
    {
        return [this, number] { ran << number; };
    }
    bool press(quint32 key) { return center.press(key, HotKey::option); }

    TestPlatform platform;
    TestHotKeyCenter &center = platform.hotKeyCenter();
    QList<int> ran;
};

TEST_F(GlobalHotKeyTest, ActionsRunAfterTheSystemsEventWasHandled)
{
    const auto first = GlobalHotKey::make(keyD, HotKey::option, action(1));
    const auto second = GlobalHotKey::make(keyS, HotKey::option, action(2));
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(press(keyS) && press(keyD) && press(keyS));
    EXPECT_TRUE(ran.isEmpty());
    drainMainQueue();
    EXPECT_EQ(ran, (QList<int>{2, 1, 2}));
}

TEST_F(GlobalHotKeyTest, ARefusedOneLeavesTheOthersAlone)
{
    center.takenByOthers << TestHotKeyCenter::Keys{keyD, HotKey::option};
    const auto first = GlobalHotKey::make(keyS, HotKey::option, action(1));
    EXPECT_FALSE(GlobalHotKey::make(keyD, HotKey::option, action(2)));
    EXPECT_FALSE(GlobalHotKey::make(keyS, HotKey::option, action(3)));
    center.takenByOthers.clear();
    const auto last = GlobalHotKey::make(keyD, HotKey::option, action(4));
    ASSERT_TRUE(first && last);
    EXPECT_EQ(last->id(), first->id() + 3);

    for (quint32 number = 0; number <= last->id() + 1; ++number)
        center.handler(number);
    drainMainQueue();
    EXPECT_EQ(ran, (QList<int>{1, 4}));
}

TEST_F(GlobalHotKeyTest, ReleasingFreesTheKeys)
{
    auto hotKey = GlobalHotKey::make(keyD, HotKey::option, action(1));
    ASSERT_TRUE(hotKey);
    const quint32 number = hotKey->id();
    hotKey.reset();
    EXPECT_FALSE(press(keyD));
    center.handler(number); // a press that was already on its way
    drainMainQueue();
    EXPECT_TRUE(ran.isEmpty());

    hotKey = GlobalHotKey::make(keyD, HotKey::option, action(2));
    EXPECT_TRUE(hotKey && press(keyD));
    drainMainQueue();
    EXPECT_EQ(ran, QList<int>{2});
}

} // namespace
} // namespace tovi
