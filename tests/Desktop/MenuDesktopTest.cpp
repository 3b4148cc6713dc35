// SPDX-License-Identifier: MIT
#include <X11/keysym.h>
#include <csignal>

#include "Capture/MenuBarCopyCapturer.h"
#include "Desktop/AccessibilityFixture.h"
#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/X11Pasteboard.h"
#include "Platform/X11/XcbSession.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

const QString line = QString::fromUtf8("🙂 Hello brave world");

/// Another client of the display: counts the windows that appear on it.
class Onlooker
{
public:
    Onlooker()
    {
        const quint32 mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_session.connection(), m_session.root(), XCB_CW_EVENT_MASK, &mask);
    }

    int windowsShown()
    {
        // The events that belong to what happened so far come before the reply.
        m_session.startDeadline(std::chrono::seconds(20));
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session.connection()));
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_session.connection())})
            m_windowsShown += (event->response_type & 0x7F) == XCB_MAP_NOTIFY;
        return m_windowsShown;
    }

private:
    XcbSession m_session;
    int m_windowsShown = 0;
};

class MenuDesktop : public AccessibilityDesktop
{
protected:
    /// Starts the program with a file whose name its window's title contains.
    QProcess *open(const QString &program, const QStringList &arguments)
    {
        const QString file = desktop->writeFile(QStringLiteral("menu.txt"), line);
        QProcess *process = desktop->start(program, arguments + QStringList{file});
        return process && desktop->waitForWindow(QStringLiteral("menu.txt")) ? process : nullptr;
    }

    bool findsCopyItem()
    {
        const auto window = FrontWindow().activeWindow();
        const qint64 process = window ? window->processIdentifier : 0;
        platform.workspace().frontmost =
            RunningApplication{.localizedName = {}, .bundleIdentifier = {}, .processIdentifier = process};
        platform.accessibility().applications = {{process, accessibility->applicationElement(process)}};
        item = onQueue([] { return MenuBarCopyCapturer::findCopyItem(); });
        return item.has_value();
    }

    void copiesThroughTheMenu()
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        EXPECT_FALSE(findsCopyItem()) << "nothing is selected";
        desktop->pressKey(XK_End, {XK_Shift_L});
        ASSERT_TRUE(DesktopSession::eventually([this] { return findsCopyItem(); }));

        X11Pasteboard pasteboard;
        Onlooker onlooker;
        const int shown = onlooker.windowsShown();
        EXPECT_EQ(
            onQueue([this] { return withTimeout(*item, patience).performAction(QStringLiteral("AXPress")); }),
            AXError::None);
        EXPECT_TRUE(DesktopSession::eventually(
            [&] { return pasteboard.text(std::chrono::seconds(1)).value.text == line; }));
        EXPECT_EQ(onlooker.windowsShown(), shown) << "a menu became visible";

        desktop->pressKey(XK_f, {XK_Alt_L});
        EXPECT_TRUE(DesktopSession::eventually([&] { return onlooker.windowsShown() > shown; }))
            << "a menu that a person opens counts";
        desktop->pressKey(XK_Escape);
    }

    TestPlatform platform;
    std::optional<AXElement> item;
};

TEST_F(MenuDesktop, Gtk)
{
    QProcess *editor = open(QStringLiteral("mousepad"), {QStringLiteral("--disable-server")});
    ASSERT_TRUE(editor);
    copiesThroughTheMenu();

    ::kill(static_cast<pid_t>(editor->processId()), SIGSTOP);
    EXPECT_FALSE(findsCopyItem());
    ::kill(static_cast<pid_t>(editor->processId()), SIGCONT);
    EXPECT_TRUE(DesktopSession::eventually([this] { return findsCopyItem(); })) << "it goes on";

    const AXElement old = *item;
    desktop->end(editor);
    EXPECT_NE(onQueue([old] { return old.performAction(QStringLiteral("AXPress")); }), AXError::None);
    EXPECT_FALSE(findsCopyItem());
}

TEST_F(MenuDesktop, Qt)
{
    ASSERT_TRUE(open(QStringLiteral("featherpad"), {QStringLiteral("--standalone")}));
    copiesThroughTheMenu();
}

} // namespace
} // namespace tovi
