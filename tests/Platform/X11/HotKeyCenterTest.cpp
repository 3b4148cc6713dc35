// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QLineEdit>

#include "HotKey.h"
#include "Platform/X11/LiveDesktop.h"
#include "Platform/X11/X11HotKeyCenter.h"
#include "Platform/X11/X11RawInput.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

// The server's key codes.
constexpr uint8_t keyD = 40, keyS = 39, alt = 64, control = 37, superKey = 133, shift = 50, capsLock = 66,
                  numLock = 77;
constexpr quint32 codeD = 2, codeS = 1;

struct HotKeys : testing::Test
{
    HotKeys()
    {
        center.setHandler([this](quint32 number) { presses << number; });
    }
    /// Whether the presses so far are these, once the server's events have come in.
    bool saw(const QList<quint32> &expected)
    {
        waitUntil([&] { return presses.size() >= expected.size(); });
        user.property(user.root(), "WM_NAME");
        drainMainQueue();
        return std::exchange(presses, {}) == expected;
    }
    OtherClient user;
    X11RawInput rawInput;
    X11HotKeyCenter center{rawInput};
    QList<quint32> presses;
};

TEST_F(HotKeys, FireByPositionWhateverTheLocksAndTheLayout)
{
    ASSERT_EQ(center.registerHotKey(1, codeD, HotKey::option), HotKeyCenter::Registration::Registered);
    ASSERT_EQ(center.registerHotKey(2, codeS, HotKey::control | HotKey::shift | HotKey::command),
              HotKeyCenter::Registration::Registered);
    user.press({alt, keyD});
    EXPECT_TRUE(saw({1}));
    user.press({superKey, shift, control, keyS});
    EXPECT_TRUE(saw({2}));
    user.press({alt, shift, keyD});
    user.press({keyD});
    user.press({alt, keyD});
    EXPECT_TRUE(saw({1})) << "other modifiers fired";

    user.press({capsLock});
    user.press({alt, keyD});
    user.press({numLock});
    user.press({alt, keyD});
    user.press({capsLock});
    user.press({alt, keyD});
    user.press({numLock});
    EXPECT_TRUE(saw({1, 1, 1}));

    const QStringList layouts[] = {{QStringLiteral("ru")},
                                   {QStringLiteral("us,ru")},
                                   {QStringLiteral("us"), QStringLiteral("dvorak")},
                                   {QStringLiteral("us")}};
    for (const QStringList &layout : layouts) {
        LiveDesktop::run(QStringLiteral("setxkbmap"), layout);
        user.press({alt, keyD});
        EXPECT_TRUE(saw({1})) << layout.first().toStdString();
    }
    center.unregisterHotKey(1);
    EXPECT_TRUE(waitUntil([&] { return user.isFree(keyD, XCB_MOD_MASK_1); })) << "not given back";
}

TEST_F(HotKeys, HoldModifiersWhereverTheKeyboardHasThem)
{
    ASSERT_EQ(center.registerHotKey(1, codeS, HotKey::control), HotKeyCenter::Registration::Registered);
    // Super moves from the fourth modifier to the third, Num Lock to the fourth.
    const auto xmodmap = [](const char *expression) {
        LiveDesktop::run(QStringLiteral("xmodmap"), {QStringLiteral("-e"), QString::fromLatin1(expression)});
    };
    for (const char *expression :
         {"clear mod4", "clear mod3", "clear mod2", "add mod3 = Super_L", "add mod4 = Num_Lock"})
        xmodmap(expression);
    drainMainQueue();
    EXPECT_TRUE(waitUntil([&] { return !user.isFree(keyS, XCB_MOD_MASK_3); })) << "not renewed";
    presses.clear();
    user.press({superKey, keyS});
    EXPECT_TRUE(saw({1}));
    xmodmap("clear mod3");
    EXPECT_TRUE(waitUntil([&] { return user.isFree(keyS, XCB_MOD_MASK_3); }));
    EXPECT_EQ(center.registerHotKey(2, codeD, HotKey::control), HotKeyCenter::Registration::Refused)
        << "the keyboard has no such modifier";
    LiveDesktop::run(QStringLiteral("setxkbmap"), {QStringLiteral("us")});
    drainMainQueue();
}

TEST_F(HotKeys, RefuseWhatCannotBeGrabbedAndLeaveNothingBehind)
{
    EXPECT_EQ(center.registerHotKey(1, codeD, 0), HotKeyCenter::Registration::Refused);
    EXPECT_EQ(center.registerHotKey(1, codeD, 1024), HotKeyCenter::Registration::Refused);
    EXPECT_EQ(center.registerHotKey(1, 9999, HotKey::option), HotKeyCenter::Registration::Refused);
    {
        // Another program holds only the combination with Caps Lock.
        OtherClient other;
        ASSERT_TRUE(other.grab(keyD, XCB_MOD_MASK_1 | XCB_MOD_MASK_LOCK));
        EXPECT_EQ(center.registerHotKey(1, codeD, HotKey::option), HotKeyCenter::Registration::Refused);
        EXPECT_TRUE(waitUntil([&] { return user.isFree(keyD, XCB_MOD_MASK_1); })) << "a part was kept";
    }
    ASSERT_EQ(center.registerHotKey(2, codeS, HotKey::option), HotKeyCenter::Registration::Registered);
    EXPECT_EQ(center.registerHotKey(3, codeS, HotKey::option), HotKeyCenter::Registration::Refused);
    center.unregisterHotKey(3);
    user.press({alt, keyS});
    EXPECT_TRUE(saw({2}));
}

TEST_F(HotKeys, HoldingIsOnePress)
{
    LiveDesktop::run(QStringLiteral("xset"), {QStringLiteral("r"), QStringLiteral("rate"),
                                              QStringLiteral("60"), QStringLiteral("100")});
    QLineEdit repeats;
    repeats.show();
    repeats.activateWindow();
    ASSERT_TRUE(waitUntil([&] { return repeats.hasFocus(); }));
    // The keyboard does repeat here.
    user.key(keyS, true);
    EXPECT_TRUE(waitUntil([&] { return repeats.text().size() >= 5; }));
    user.key(keyS, false);

    // Also while a window of this program has the keyboard.
    ASSERT_EQ(center.registerHotKey(1, codeD, HotKey::option), HotKeyCenter::Registration::Registered);
    struct Releases : QAbstractNativeEventFilter
    {
        bool nativeEventFilter(const QByteArray &, void *message, qintptr *) override
        {
            const auto *event = static_cast<const xcb_generic_event_t *>(message);
            count += (event->response_type & ~0x80) == XCB_KEY_RELEASE;
            return false;
        }
        int count = 0;
    } releases;
    QCoreApplication::instance()->installNativeEventFilter(&releases);
    user.key(alt, true);
    user.key(keyD, true);
    EXPECT_TRUE(waitUntil([&] { return releases.count >= 5; }));
    user.key(keyD, false);
    user.key(alt, false);
    EXPECT_TRUE(saw({1}));
    user.press({alt, keyD});
    EXPECT_TRUE(saw({1}));

    // Nor are keys pressed that are held while they are registered: they have just been recorded.
    center.unregisterHotKey(1);
    user.key(alt, true);
    user.key(keyD, true);
    user.property(user.root(), "WM_NAME");
    ASSERT_EQ(center.registerHotKey(1, codeD, HotKey::option), HotKeyCenter::Registration::Registered);
    releases.count = 0;
    EXPECT_TRUE(waitUntil([&] { return releases.count >= 5; }));
    user.key(keyD, false);
    user.key(alt, false);
    user.press({alt, keyD});
    EXPECT_TRUE(saw({1}));
}

} // namespace
} // namespace tovi
