// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QWindow>

#include <xcb/shape.h>

#include "Platform/X11/LiveDesktop.h"
#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/X11PanelHost.h"
#include "Platform/X11/X11ScreenCapture.h"
#include "Platform/X11/X11Workspace.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

constexpr uint8_t keyEscape = 9, keyA = 38;

struct Panels : testing::Test
{
    ~Panels() override
    {
        target->kill();
        target->waitForFinished();
    }
    void SetUp() override
    {
        // The last test's target may have had the same window number, and still be called active.
        ASSERT_TRUE(waitUntil([&] { return activeIsTarget() && user.focus() == active(); }));
        targetWindow = active();
    }
    xcb_window_t active() { return user.property(user.root(), "_NET_ACTIVE_WINDOW").value(0); }
    bool activeIsTarget()
    {
        const auto front = workspace.frontmostApplication();
        return front && front->processIdentifier == target->processId();
    }
    std::unique_ptr<Panel> makePanel()
    {
        auto content = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(content.get());
        layout->addWidget(edit = new QLineEdit);
        auto panel = host.makePanel(std::move(content));
        window = static_cast<xcb_window_t>(edit->window()->winId());
        return panel;
    }
    bool isMapped() { return edit->window()->windowHandle()->isExposed(); }

    /// An installed application whose windows are the target's.
    static QString installed()
    {
        static const QTemporaryDir data;
        QDir(data.path()).mkpath(QStringLiteral("applications"));
        QFile entry(data.filePath(QStringLiteral("applications/org.example.Target.desktop")));
        if (entry.open(QIODevice::WriteOnly))
            entry.write("[Desktop Entry]\nType=Application\nName=The Target\nExec=xterm\n"
                        "StartupWMClass=TargetClass\n");
        qputenv("XDG_DATA_HOME", data.path().toUtf8());
        return data.path();
    }

    const QString data = installed();
    OtherClient user;
    X11Workspace workspace;
    TestClock clock;
    X11ScreenCapture capture;
    X11PanelHost host{workspace.frontWindow(), clock, capture};
    std::unique_ptr<QProcess> target =
        LiveDesktop::start(QStringLiteral("xterm"),
                           {QStringLiteral("-name"), QStringLiteral("target"), QStringLiteral("-class"),
                            QStringLiteral("TargetClass"), QStringLiteral("-e"), QStringLiteral("cat")});
    xcb_window_t targetWindow = 0;
    QPointer<QLineEdit> edit;
    xcb_window_t window = 0;
};

TEST_F(Panels, AreExactlyPlacedOnAllWorkspacesAndInNoTaskList)
{
    const auto screen = workspace.mainScreen();
    ASSERT_TRUE(screen);
    const double scale = screen->backingScaleFactor;
    EXPECT_EQ(scale, qEnvironmentVariableIntValue("QT_SCALE_FACTOR") == 2 ? 2.0 : 1.0);
    EXPECT_EQ(screen->frame, QRectF(0, 0, 1600 / scale, 900 / scale));

    for (int round = 0; round < 4; ++round) {
        SCOPED_TRACE(round);
        auto panel = makePanel();
        const QRectF frame(50 + round, 60, 320, 280);
        panel->setFrame(frame);
        EXPECT_EQ(panel->frame(), frame);
        panel->orderFrontRegardless();
        ASSERT_TRUE(waitUntil([&] { return isMapped(); }));
        const auto states = [&] { return user.property(window, "_NET_WM_STATE"); };
        for (const char *state :
             {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_ABOVE"})
            EXPECT_TRUE(waitUntil([&] { return states().contains(user.atom(state)); })) << state;
        EXPECT_TRUE(waitUntil(
            [&] { return user.property(window, "_NET_WM_DESKTOP") == QList<quint32>{0xffffffff}; }));
        EXPECT_EQ(user.property(window, "_NET_WM_WINDOW_TYPE").value(0),
                  user.atom("_NET_WM_WINDOW_TYPE_UTILITY"));
        const QRect native((50 + round) * scale, 900 - (60 + 280) * scale, 320 * scale, 280 * scale);
        EXPECT_TRUE(waitUntil([&] { return user.frameOf(window) == native; }));
        EXPECT_EQ(active(), targetWindow) << "the panel took the focus";

        // Grows upwards from the program's view, so the top edge stays.
        panel->setFrame({50.0 + round, 40, 320, 300});
        EXPECT_TRUE(waitUntil([&] { return user.frameOf(window).height() == 300 * scale; }));
        EXPECT_EQ(user.frameOf(window).top(), native.top());
    }
}

TEST_F(Panels, TakeTheKeyboardAndGiveItBack)
{
    for (int round = 0; round < 4; ++round) {
        SCOPED_TRACE(round);
        // A window is kept ready, also the one that the last panel had.
        clock.advance(std::chrono::seconds(2));
        const int idle = host.idleWindows();
        EXPECT_GE(idle, 1);
        auto panel = makePanel();
        EXPECT_EQ(host.idleWindows(), idle - 1);
        int escapes = 0;
        panel->onEscape = [&] {
            ++escapes;
            panel.reset(); // as the program does: from inside the key's delivery
        };
        panel->setFrame({100, 100, 300, 200});
        user.press({keyA}); // the user types on meanwhile
        panel->orderFrontRegardless();
        panel->makeKey();
        ASSERT_TRUE(waitUntil([&] { return active() == window && edit->window()->isActiveWindow(); }));
        EXPECT_TRUE(activeIsTarget()) << "a panel counts as an application";
        edit->setFocus();
        user.press({keyA});
        EXPECT_TRUE(waitUntil([&] { return edit->text() == QLatin1String("a"); }));

        // A child that wants the key keeps it.
        struct Taker : QObject
        {
            bool eventFilter(QObject *, QEvent *event) override
            {
                const bool mine = event->type() == QEvent::KeyPress &&
                                  static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape;
                taken += mine;
                return mine;
            }
            int taken = 0;
        } taker;
        edit->installEventFilter(&taker);
        user.press({keyEscape});
        EXPECT_TRUE(waitUntil([&] { return taker.taken == 1; }));
        EXPECT_EQ(escapes, 0);
        edit->removeEventFilter(&taker);

        user.press({keyEscape});
        EXPECT_TRUE(waitUntil([&] { return escapes == 1; }));
        EXPECT_TRUE(waitUntil([&] { return active() == targetWindow; }));
        EXPECT_TRUE(waitUntil([&] { return workspace.frontWindow().isWithdrawn(window); }));
        EXPECT_TRUE(waitUntil([&] { return edit.isNull(); })) << "the content leaked";
    }
}

TEST_F(Panels, AreReplacedInOneTurn)
{
    auto panel = makePanel();
    panel->setFrame({100, 100, 300, 200});
    for (int round = 0; round < 20; ++round) {
        panel->orderFrontRegardless();
        panel->makeKey();
        if (round % 3) {
            ASSERT_TRUE(waitUntil([&] { return isMapped(); }));
        }
        panel.reset();
        panel = makePanel();
        panel->setFrame({100.0 + round, 100, 300, 200});
    }
    panel->orderFrontRegardless();
    panel->makeKey();
    EXPECT_TRUE(waitUntil([&] { return active() == window; }));
    EXPECT_TRUE(waitUntil([&] {
        return user.property(window, "_NET_WM_STATE").contains(user.atom("_NET_WM_STATE_SKIP_TASKBAR")) &&
               user.property(window, "_NET_WM_STATE").contains(user.atom("_NET_WM_STATE_ABOVE")) &&
               user.property(window, "_NET_WM_DESKTOP") == QList<quint32>{0xffffffff};
    }));
    EXPECT_LE(host.idleWindows(), 2);
    panel.reset();
    EXPECT_TRUE(waitUntil([&] { return active() == targetWindow; }));
}

TEST_F(Panels, CutTheirCornersWhileNobodyBlendsThem)
{
    // As the server sees it; points, from the window's upper left corner.
    const auto covers = [this](QPointF point) {
        auto *connection = QtXcb::connection();
        const XcbOwned<xcb_shape_get_rectangles_reply_t> shape(xcb_shape_get_rectangles_reply(
            connection,
            xcb_shape_get_rectangles(connection, xcb_window_t(edit->window()->winId()),
                                     XCB_SHAPE_SK_BOUNDING),
            nullptr));
        const QPoint pixel = (point * edit->devicePixelRatioF()).toPoint();
        const auto *rectangles = xcb_shape_get_rectangles_rectangles(shape.get());
        const int count = xcb_shape_get_rectangles_rectangles_length(shape.get());
        return std::any_of(rectangles, rectangles + count, [&](const xcb_rectangle_t &r) {
            return QRect(r.x, r.y, r.width, r.height).contains(pixel);
        });
    };
    auto panel = makePanel();
    panel->setFrame({100, 100, 300, 200});
    panel->orderFrontRegardless();
    ASSERT_TRUE(waitUntil([&] { return isMapped(); }));
    EXPECT_FALSE(host.isCompositing());
    EXPECT_FALSE(covers(QPointF(1, 1)));
    EXPECT_FALSE(covers(QPointF(298.5, 198.5)));
    EXPECT_TRUE(covers(QPointF(150, 100)));
    EXPECT_TRUE(covers(QPointF(150, 199.4)));
    const auto compositor = LiveDesktop::start(QStringLiteral("xcompmgr"), {});
    EXPECT_TRUE(waitUntil([&] { return host.isCompositing() && covers(QPointF(1, 1)); }));
    compositor->kill();
    compositor->waitForFinished();
    EXPECT_TRUE(waitUntil([&] { return !host.isCompositing() && !covers(QPointF(1, 1)); }));
}

TEST_F(Panels, TheWorkspaceKnowsOtherApplicationsAndReservedSpace)
{
    const auto front = workspace.frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->localizedName, QStringLiteral("The Target"));
    EXPECT_EQ(front->bundleIdentifier, QStringLiteral("org.example.Target"));
    // A window of our own that is no panel counts as ourselves.
    {
        QWidget settings;
        settings.show();
        settings.activateWindow();
        EXPECT_TRUE(waitUntil([&] {
            const auto self = workspace.frontmostApplication();
            return self && self->processIdentifier == QCoreApplication::applicationPid();
        }));
    }
    const double scale = workspace.screens().first().backingScaleFactor;
    const auto tray =
        LiveDesktop::start(QStringLiteral("trayer"),
                           {QStringLiteral("--edge"), QStringLiteral("bottom"), QStringLiteral("--widthtype"),
                            QStringLiteral("percent"), QStringLiteral("--width"), QStringLiteral("100"),
                            QStringLiteral("--height"), QStringLiteral("30"),
                            QStringLiteral("--SetPartialStrut"), QStringLiteral("true")});
    EXPECT_TRUE(waitUntil([&] {
        return workspace.screens().first().visibleFrame == QRectF(0, 30 / scale, 1600 / scale, 870 / scale);
    }));

    // Two screens: only the one over the panel's place loses space to it.
    LiveDesktop::run(QStringLiteral("xrandr"),
                     {QStringLiteral("--setmonitor"), QStringLiteral("LEFT"),
                      QStringLiteral("800/200x900/220+0+0"), QStringLiteral("screen")});
    LiveDesktop::run(QStringLiteral("xrandr"),
                     {QStringLiteral("--setmonitor"), QStringLiteral("RIGHT"),
                      QStringLiteral("800/200x900/220+800+0"), QStringLiteral("none")});
    EXPECT_TRUE(waitUntil([&] { return workspace.screens().size() == 2; }));
    auto panel = makePanel();
    const Screen right = workspace.screens().last();
    panel->setFrame({right.frame.x() + 20, 100, 200, 150});
    panel->orderFrontRegardless();
    const QRect native(800 + 20 * scale, 900 - 250 * scale, 200 * scale, 150 * scale);
    EXPECT_TRUE(waitUntil([&] { return user.frameOf(window) == native; }));
    panel->makeKey();
    EXPECT_TRUE(waitUntil([&] { return workspace.mainScreen() == right; }));
    panel.reset();
    tray->kill();
    tray->waitForFinished();
    EXPECT_TRUE(waitUntil([&] { return workspace.screens().last().visibleFrame == right.frame; }));
}

} // namespace
} // namespace tovi
