// SPDX-License-Identifier: MIT
#include <QGuiApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>
#include <gtest/gtest.h>

#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/LiveDesktop.h"
#include "Platform/X11/X11EventMonitors.h"
#include "Platform/X11/X11Keyboard.h"
#include "Platform/X11/X11RawInput.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

// The server's key codes.
constexpr uint8_t keyC = 54, keyD = 40, keyI = 31, alt = 64, control = 37, shift = 50;

/// An application that takes keys.
class Target final : public QWidget
{
public:
    Target()
    {
        show();
        xcb_flush(QtXcb::connection()); // the toolkit does it only before it sleeps
    }
    /// Whether it has got the keyboard.
    bool isReady(OtherClient &user)
    {
        waitUntil([&] { return windowHandle()->isExposed(); });
        user.setFocus(static_cast<xcb_window_t>(winId()));
        return waitUntil([&] { return isActiveWindow(); });
    }
    QStringList seen;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        const bool isModifier =
            event->key() == 0 || (event->key() >= Qt::Key_Escape && event->key() != Qt::Key_Insert);
        if (!isModifier)
            seen << QKeySequence(event->modifiers().toInt() | event->key()).toString();
    }
};

void useLayout(const char *layout, const char *variant = "")
{
    QStringList arguments{QLatin1String(layout), QStringLiteral("-variant"), QLatin1String(variant),
                          QStringLiteral("-option"), QString()};
    if (QLatin1String(layout).contains(u','))
        arguments << QStringLiteral("-option") << QStringLiteral("grp:alt_shift_toggle");
    LiveDesktop::run(QStringLiteral("setxkbmap"), arguments);
}

TEST(Keyboard, CopiesInEveryLayout)
{
    FrontWindow frontWindow;
    X11Keyboard keyboard(frontWindow);
    OtherClient user;
    Target target;
    ASSERT_TRUE(target.isReady(user));
    const auto typed = [&](quint32 modifiers) {
        target.seen.clear();
        const bool posted = keyboard.post({keyCodeC, modifiers});
        if (posted)
            waitUntil([&] { return !target.seen.isEmpty(); });
        return target.seen.join(QLatin1Char(' '));
    };
    struct Case
    {
        const char *layout;
        const char *variant;
        bool second; ///< switch to the second layout
        const char *usual;
        const char *terminal;
    };
    const Case cases[] = {
        {"us", "", false, "Ctrl+C", "Ctrl+Shift+C"},       {"de", "", false, "Ctrl+C", "Ctrl+Shift+C"},
        {"us", "dvorak", false, "Ctrl+C", "Ctrl+Shift+C"}, {"us,ru", ",", false, "Ctrl+C", "Ctrl+Shift+C"},
        {"us,ru", ",", true, "Ctrl+C", "Ctrl+Shift+C"},    {"ru", "", false, "Ctrl+Ins", ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.layout);
        useLayout(c.layout, c.variant);
        if (c.second)
            user.press({alt, shift});
        EXPECT_EQ(typed(ModifierFlag::command), QLatin1String(c.usual));
        EXPECT_EQ(typed(ModifierFlag::command | ModifierFlag::shift), QLatin1String(c.terminal));
    }
    useLayout("us");
}

TEST(Keyboard, ReleasesWhatIsHeldAndPressesNothingAgain)
{
    FrontWindow frontWindow;
    X11Keyboard keyboard(frontWindow);
    OtherClient user;
    Target target;
    ASSERT_TRUE(target.isReady(user));
    user.key(alt, true);
    user.key(shift, true);
    user.key(keyD, true);
    EXPECT_EQ(keyboard.modifierFlags(), ModifierFlag::option | ModifierFlag::shift);
    ASSERT_TRUE(waitUntil([&] { return !target.seen.isEmpty(); }));
    target.seen.clear();
    ASSERT_TRUE(keyboard.post({keyCodeC, ModifierFlag::command}));
    EXPECT_EQ(keyboard.modifierFlags(), 0u);
    ASSERT_TRUE(waitUntil([&] { return target.seen.contains(QStringLiteral("Ctrl+C")); }));
    EXPECT_FALSE(user.isDown(keyD)) << "it would be repeated as a letter";
    for (const uint8_t key : {keyD, shift, alt})
        user.key(key, false);
}

class KeyDownMonitor : public testing::Test
{
protected:
    KeyDownMonitor()
    {
        subscription =
            monitors.addGlobalKeyDownMonitor(keyCodeC, [this](const KeyEvent &event) { events << event; });
    }
    /// The events so far, once as many of the server's have come in.
    QList<KeyEvent> seen(qsizetype expected = 0)
    {
        waitUntil([&] { return events.size() >= expected; });
        user.property(user.root(), "WM_NAME");
        drainMainQueue();
        return std::exchange(events, {});
    }
    OtherClient user;
    X11RawInput rawInput;
    TestClock clock;
    X11EventMonitors monitors{rawInput, clock};
    Subscription subscription;
    QList<KeyEvent> events;
};

TEST_F(KeyDownMonitor, SeesTheKeyThatTypesCInTheLayout)
{
    const KeyEvent plain{keyCodeC, 0}, copy{keyCodeC, ModifierFlag::command};
    user.press({keyC});
    user.press({keyD});
    user.press({control, keyC});
    user.press({control, shift, keyC});
    EXPECT_EQ(seen(3), (QList{plain, copy, {keyCodeC, ModifierFlag::command | ModifierFlag::shift}}));
    useLayout("us", "dvorak");
    user.press({control, keyC}); // J there
    user.press({control, keyI});
    EXPECT_EQ(seen(1), QList{copy});
    useLayout("ru");
    user.press({control, keyC});
    EXPECT_EQ(seen(1), QList{copy});
    useLayout("us");
    drainMainQueue();

    Target ours;
    ASSERT_TRUE(ours.isReady(user));
    user.press({control, keyC});
    EXPECT_TRUE(waitUntil([&] { return !ours.seen.isEmpty(); }));
    EXPECT_TRUE(seen().isEmpty());
    ours.hide();
    ASSERT_TRUE(waitUntil([&] { return !QGuiApplication::focusWindow(); }));
    subscription.reset();
    user.press({control, keyC});
    EXPECT_TRUE(seen().isEmpty());
}

TEST_F(KeyDownMonitor, RepeatsAHeldKeyAsTheServerDoes)
{
    LiveDesktop::run(QStringLiteral("xset"), {QStringLiteral("r"), QStringLiteral("rate"),
                                              QStringLiteral("500"), QStringLiteral("25")});
    user.key(control, true);
    user.key(keyC, true);
    EXPECT_EQ(seen(1).size(), 1);
    clock.advance(499ms);
    EXPECT_EQ(seen().size(), 0);
    clock.advance(1ms);
    clock.advance(40ms);
    EXPECT_EQ(seen().size(), 2);
    user.key(keyC, false);
    EXPECT_TRUE(waitUntil([&] {
        clock.advance(1s);
        return seen().isEmpty();
    }));
    user.key(control, false);
}

} // namespace
} // namespace tovi
