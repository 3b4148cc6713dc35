// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QWindow>

#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/LiveDesktop.h"
#include "Platform/X11/X11Application.h"
#include "Platform/X11/X11PanelHost.h"
#include "Platform/X11/X11ScreenCapture.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

using Policy = Application::ActivationPolicy;

struct Windows : testing::Test
{
    Windows() { application.setPanelHost(host); }

    bool has(xcb_window_t window, const char *state)
    {
        return user.property(window, "_NET_WM_STATE").contains(user.atom(state));
    }
    bool isListed(const QWidget &window)
    {
        return !has(static_cast<xcb_window_t>(window.winId()), "_NET_WM_STATE_SKIP_TASKBAR");
    }
    static bool show(QWidget &window)
    {
        window.show();
        xcb_flush(QtXcb::connection()); // the toolkit does it only before it sleeps
        return waitUntil([&] { return window.windowHandle()->isExposed(); });
    }

    OtherClient user;
    TestClock clock;
    FrontWindow front;
    X11ScreenCapture capture;
    X11PanelHost host{front, clock, capture};
    X11Application application;
};

TEST_F(Windows, AreListedByThePolicyAtTheirShowing)
{
    QWidget early, late;
    ASSERT_TRUE(show(early));
    EXPECT_FALSE(isListed(early));
    application.setActivationPolicy(Policy::Regular);
    EXPECT_TRUE(waitUntil([&] { return isListed(early); }));
    ASSERT_TRUE(show(late));
    EXPECT_TRUE(isListed(late));
    late.close();
    application.setActivationPolicy(Policy::Accessory);
    ASSERT_TRUE(show(late));
    EXPECT_FALSE(isListed(late));
    EXPECT_TRUE(isListed(early)) << "it stays reachable while it is open";
}

TEST_F(Windows, HideAndComeBack)
{
    application.setActivationPolicy(Policy::Regular);
    QWidget settings;
    ASSERT_TRUE(show(settings));
    const auto other =
        LiveDesktop::start(QStringLiteral("xterm"), {QStringLiteral("-e"), QStringLiteral("cat")});
    const auto clients = [&] { return user.property(user.root(), "_NET_CLIENT_LIST"); };
    const auto own = static_cast<xcb_window_t>(settings.winId());
    const auto otherWindow = [&] {
        for (const xcb_window_t window : clients()) {
            if (window != own && user.property(window, "_NET_WM_PID").value(0) == other->processId())
                return window;
        }
        return xcb_window_t(0);
    };
    ASSERT_TRUE(waitUntil([&] { return otherWindow() != 0; }));
    auto panel = host.makePanel(std::make_unique<QLabel>(QStringLiteral("pinned")));
    panel->setFrame({100, 100, 200, 100});
    panel->orderFrontRegardless();

    constexpr const char *hidden = "_NET_WM_STATE_HIDDEN";
    application.hideOtherApplications();
    EXPECT_TRUE(waitUntil([&] { return has(otherWindow(), hidden); }));
    EXPECT_FALSE(has(own, hidden));
    EXPECT_TRUE(panel->isVisible());
    // Its activation, which brings everything back, is not on its way any more.
    ASSERT_TRUE(waitUntil([&] { return settings.isActiveWindow(); }));
    application.hide();
    EXPECT_TRUE(waitUntil([&] { return has(own, hidden); }));
    EXPECT_FALSE(panel->isVisible());

    application.unhideAllApplications();
    EXPECT_TRUE(waitUntil([&] { return !has(otherWindow(), hidden) && !has(own, hidden); }));
    EXPECT_TRUE(panel->isVisible());

    // One that ended while it was hidden does not come back.
    application.hide();
    panel.reset();
    host.unhidePanels();
    for (const QWidget *window : QApplication::topLevelWidgets())
        EXPECT_TRUE(window == &settings || !window->isVisible());
    other->kill();
    other->waitForFinished();
}

TEST_F(Windows, ATrayIsNoticedWhenItComesChangesAndGoes)
{
    ASSERT_FALSE(application.statusBar().isThere);
    std::unique_ptr<QSystemTrayIcon> item;
    std::optional<bool> isDark;
    const Subscription watch = application.watchStatusBar([&] {
        isDark = application.statusBar().isDark;
        if (item || !application.statusBar().isThere)
            return;
        // As the toolkit asks for events of the tray, too.
        item = std::make_unique<QSystemTrayIcon>(QIcon(QPixmap(16, 16)));
        item->show();
    });
    const auto tray = LiveDesktop::start(QStringLiteral("trayer"), {});
    ASSERT_TRUE(waitUntil([&] { return item && item->geometry().isValid(); }));
    auto *connection = QtXcb::connection();
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, user.atom("_NET_SYSTEM_TRAY_S0")), nullptr));
    ASSERT_TRUE(owner);
    for (const bool dark : {true, false}) {
        const QList<quint32> colours(12, dark ? 0xffff : 0);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, owner->owner,
                            user.atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL, 32, 12,
                            colours.constData());
        xcb_flush(connection);
        EXPECT_TRUE(waitUntil([&] { return isDark == dark; }));
    }
    tray->kill();
    tray->waitForFinished();
    EXPECT_TRUE(waitUntil([&] { return !application.statusBar().isThere; }));
}

} // namespace
} // namespace tovi
