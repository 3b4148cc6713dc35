// SPDX-License-Identifier: MIT
// Drives the program as a user does, and reads back what it shows over the accessibility bus.
#include <csignal>

#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "Capture/CaptureResult.h"
#include "Desktop/ProgramFixture.h"

namespace tovi {
namespace {

TEST_F(ProgramDesktop, ASelectionBecomesATranslation)
{
    if (!DesktopSession::isInstalled(QStringLiteral("mousepad")) ||
        !DesktopSession::isInstalled(QStringLiteral("apertium")))
        GTEST_SKIP() << "mousepad or apertium is not installed";
    writeDemoSettings(desktop);
    startProgram();
    startEditor();
    ASSERT_TRUE(capture());
    EXPECT_TRUE(shows(sentence));
    EXPECT_TRUE(shows(QStringLiteral("río")));
    for (const AccessibleTree::Node &node : AccessibleTree::read(tovi->processId())) {
        const bool isControl =
            node.role == QLatin1String("push button") || node.role == QLatin1String("text");
        EXPECT_FALSE(isControl && node.name.isEmpty())
            << "a control without a name: " << qPrintable(node.role);
    }
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(isEditorActive());
    EXPECT_TRUE(DesktopSession::eventually([&] { return shownTexts().isEmpty(); }));

    // Typed text takes the same road.
    desktop.pressKey(XK_t, {XK_Alt_L});
    ASSERT_TRUE(trace.next("panelPainted"));
    EXPECT_TRUE(isPanelActive());
    for (const xcb_keysym_t key : {XK_h, XK_o, XK_u, XK_s, XK_e, XK_Return})
        desktop.pressKey(key);
    EXPECT_TRUE(shows(QStringLiteral("casa")));

    tovi->terminate();
    EXPECT_TRUE(DesktopSession::eventually([&] { return tovi->state() == QProcess::NotRunning; }));
    EXPECT_EQ(tovi->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(tovi->exitCode(), 0);
}

TEST_F(ProgramDesktop, AStoppedApplicationEndsInAMessageAndTheNextCaptureWorks)
{
    writeDemoSettings(desktop);
    startProgram();
    startEditor();
    ASSERT_TRUE(capture());
    desktop.pressKey(XK_Escape);
    ASSERT_TRUE(isEditorActive());

    ::kill(pid_t(editor->processId()), SIGSTOP);
    desktop.pressKey(XK_d, {XK_Alt_L});
    const auto captured = trace.next("captured");
    EXPECT_TRUE(captured && captured->numbers.value("source") == -1);
    EXPECT_TRUE(shows(QStringLiteral("No selected text found.")));
    ::kill(pid_t(editor->processId()), SIGCONT);
    ASSERT_TRUE(isPanelActive());
    desktop.pressKey(XK_Escape);
    ASSERT_TRUE(isEditorActive());
    EXPECT_TRUE(capture());
}

TEST_F(ProgramDesktop, ASecondStartHandsItsArgumentsOver)
{
    writeDemoSettings(desktop);
    startProgram();
    struct Case
    {
        QStringList arguments;
        QStringList environment;
        int code;
    };
    const Case cases[] = {
        {{QStringLiteral("--settings")}, {}, 0},
        {{}, {}, 0},
        {{QStringLiteral("--version")}, {QStringLiteral("DISPLAY=")}, 0},
        {{QStringLiteral("--help")}, {QStringLiteral("DISPLAY=")}, 0},
        {{QStringLiteral("--unknown")}, {}, 2},
        {{}, {QStringLiteral("DISPLAY=:4711")}, 1},
    };
    for (const Case &c : cases) {
        QProcess *second = desktop.start(program, c.arguments, c.environment);
        ASSERT_TRUE(second);
        EXPECT_TRUE(DesktopSession::eventually([&] { return second->state() == QProcess::NotRunning; }));
        EXPECT_EQ(second->exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(second->exitCode(), c.code) << qPrintable(c.arguments.join(QLatin1Char(' ')));
        if (c.code == 0 && c.environment.isEmpty()) {
            const auto handedOver = trace.next("arguments");
            // Without arguments it asks for the settings.
            EXPECT_TRUE(handedOver && handedOver->numbers.value("count") == 1);
        }
    }
    EXPECT_EQ(tovi->state(), QProcess::Running);
}

class ProgramWithoutAccessibility : public ProgramDesktop
{
protected:
    ProgramWithoutAccessibility()
        : ProgramDesktop({.accessibilityServices = false})
    {}
};

TEST_F(ProgramWithoutAccessibility, StillAnswersTheShortcut)
{
    writeDemoSettings(desktop);
    startProgram();
    desktop.pressKey(XK_d, {XK_Alt_L});
    const auto captured = trace.next("captured");
    ASSERT_TRUE(captured);
    EXPECT_EQ(captured->numbers.value("source"), -1);
    EXPECT_TRUE(trace.next("panelPainted"));
    desktop.pressKey(XK_Escape);

    // Nobody can be asked, but the primary selection is there.
    ASSERT_TRUE(desktop.start(QStringLiteral("xterm"),
                              {QStringLiteral("-title"), QStringLiteral("banks"), QStringLiteral("-geometry"),
                               QStringLiteral("60x10+200+500"), QStringLiteral("-e"),
                               QStringLiteral("echo The river; sleep 600")}));
    const auto terminal = desktop.waitForWindow(QStringLiteral("banks"));
    ASSERT_TRUE(terminal);
    const QPoint word = desktop.geometry(terminal).topLeft() + QPoint(20, 10);
    EXPECT_TRUE(DesktopSession::eventually([&] {
        desktop.click(word, 2);
        trace.clear();
        desktop.pressKey(XK_d, {XK_Alt_L});
        const auto read = trace.next("captured");
        desktop.pressKey(XK_Escape);
        return read && read->numbers.value("source") == int(CaptureSource::accessibility);
    }));
}

} // namespace
} // namespace tovi
