// SPDX-License-Identifier: MIT
#include <QElapsedTimer>

#include <X11/keysym.h>
#include <csignal>

#include "Capture/MenuBarCopyCapturer.h"
#include "Desktop/AccessibilityFixture.h"
#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/XcbSession.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

const QString line = QString::fromUtf8("🙂 Hello brave world");

/// Another client of the display: counts the windows that appear on it and reads the clipboard.
class Onlooker
{
public:
    Onlooker()
        : m_window(xcb_generate_id(m_session.connection()))
    {
        const quint32 mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_session.connection(), m_session.root(), XCB_CW_EVENT_MASK, &mask);
        xcb_create_window(m_session.connection(), 0, m_window, m_session.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }

    int windowsShown()
    {
        // The events that belong to what happened so far come before the reply.
        m_session.startDeadline(std::chrono::seconds(20));
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session.connection()));
        while (nextEvent()) {
        }
        return m_windowsShown;
    }

    QString clipboard()
    {
        m_session.startDeadline(std::chrono::seconds(20));
        const xcb_atom_t property = m_session.atom("TOVI_TEST");
        xcb_convert_selection(m_session.connection(), m_window, m_session.atom("CLIPBOARD"),
                              m_session.atom("UTF8_STRING"), property, XCB_CURRENT_TIME);
        xcb_flush(m_session.connection());
        m_answered = false;
        DesktopSession::eventually([this] {
            while (nextEvent()) {
            }
            return m_answered;
        });
        const auto reply = m_session.reply(m_session.requestProperty(m_window, property));
        xcb_delete_property(m_session.connection(), m_window, property);
        return QString::fromUtf8(propertyBytes(reply.get()));
    }

private:
    bool nextEvent()
    {
        const XcbOwned<xcb_generic_event_t> event(xcb_poll_for_event(m_session.connection()));
        const int type = event ? event->response_type & 0x7F : 0;
        m_windowsShown += type == XCB_MAP_NOTIFY;
        m_answered = m_answered || type == XCB_SELECTION_NOTIFY;
        return event != nullptr;
    }

    XcbSession m_session;
    xcb_window_t m_window;
    int m_windowsShown = 0;
    bool m_answered = false;
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

    template <class Fn>
    auto timed(Fn work)
    {
        QElapsedTimer timer;
        timer.start();
        auto result = work();
        milliseconds = double(timer.nsecsElapsed()) / 1e6;
        return result;
    }

    bool findsCopyItem()
    {
        const auto window = FrontWindow().activeWindow();
        const qint64 process = window ? window->processIdentifier : 0;
        platform.workspace().frontmost =
            RunningApplication{.localizedName = {}, .bundleIdentifier = {}, .processIdentifier = process};
        platform.accessibility().applications = {{process, accessibility->applicationElement(process)}};
        item = onQueue([this] { return timed([] { return MenuBarCopyCapturer::findCopyItem(); }); });
        return item.has_value();
    }

    void copiesThroughTheMenu(const char *name)
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        EXPECT_FALSE(findsCopyItem()) << "nothing is selected";
        std::printf("%s: no item %.1f ms\n", name, milliseconds);
        desktop->pressKey(XK_End, {XK_Shift_L});
        ASSERT_TRUE(DesktopSession::eventually([this] { return findsCopyItem(); }));
        ASSERT_TRUE(findsCopyItem());
        std::printf("%s: item %.1f ms\n", name, milliseconds);

        Onlooker onlooker;
        const int shown = onlooker.windowsShown();
        EXPECT_EQ(onQueue([this] {
                      return timed([this] { return item->performAction(QStringLiteral("AXPress")); });
                  }),
                  AXError::None);
        std::printf("%s: press %.1f ms\n", name, milliseconds);
        EXPECT_TRUE(DesktopSession::eventually([&] { return onlooker.clipboard() == line; }));
        EXPECT_EQ(onlooker.windowsShown(), shown) << "a menu became visible";

        desktop->pressKey(XK_f, {XK_Alt_L});
        EXPECT_TRUE(DesktopSession::eventually([&] { return onlooker.windowsShown() > shown; }))
            << "a menu that a person opens counts";
        desktop->pressKey(XK_Escape);
    }

    TestPlatform platform;
    std::optional<AXElement> item;
    double milliseconds = 0;
};

TEST_F(MenuDesktop, Gtk)
{
    if (!DesktopSession::isInstalled(QStringLiteral("mousepad")))
        GTEST_SKIP() << "mousepad is not installed";
    QProcess *editor = open(QStringLiteral("mousepad"), {QStringLiteral("--disable-server")});
    ASSERT_TRUE(editor);
    copiesThroughTheMenu("mousepad");

    ::kill(static_cast<pid_t>(editor->processId()), SIGSTOP);
    EXPECT_FALSE(findsCopyItem());
    std::printf("stopped mousepad: no item %.1f ms\n", milliseconds);
    ::kill(static_cast<pid_t>(editor->processId()), SIGCONT);
    EXPECT_TRUE(DesktopSession::eventually([this] { return findsCopyItem(); })) << "it goes on";

    const AXElement old = *item;
    desktop->end(editor);
    EXPECT_NE(onQueue([old] { return old.performAction(QStringLiteral("AXPress")); }), AXError::None);
    EXPECT_FALSE(findsCopyItem());
}

TEST_F(MenuDesktop, Qt)
{
    if (!DesktopSession::isInstalled(QStringLiteral("featherpad")))
        GTEST_SKIP() << "featherpad is not installed";
    ASSERT_TRUE(open(QStringLiteral("featherpad"), {QStringLiteral("--standalone")}));
    copiesThroughTheMenu("featherpad");
}

TEST_F(MenuDesktop, ApplicationsWithoutAMenuBar)
{
    const struct
    {
        const char *program;
        QStringList arguments;
    } rows[] = {
        {"xterm",
         {QStringLiteral("-title"), QStringLiteral("menu.txt"), QStringLiteral("-e"),
          QStringLiteral("less")}},
        {"chromium",
         {QStringLiteral("--no-sandbox"), QStringLiteral("--no-first-run"), QStringLiteral("--disable-gpu"),
          QStringLiteral("--force-renderer-accessibility"), QStringLiteral("--disable-background-networking"),
          QStringLiteral("--disable-sync"), QStringLiteral("--password-store=basic"),
          QStringLiteral("--user-data-dir=") + desktop->home() + QStringLiteral("/chromium")}},
    };
    for (const auto &row : rows) {
        const QString program = QString::fromLatin1(row.program);
        if (!DesktopSession::isInstalled(program))
            continue;
        QProcess *process = open(program, row.arguments);
        ASSERT_TRUE(process) << row.program;
        ASSERT_TRUE(program == QLatin1String("xterm") || waitForAccessibleFocus());
        EXPECT_FALSE(findsCopyItem());
        std::printf("%s: no item %.1f ms\n", row.program, milliseconds);
        desktop->end(process);
    }
}

} // namespace
} // namespace tovi
