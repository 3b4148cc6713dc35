// SPDX-License-Identifier: MIT
// Drives the program as a user does, and reads back what it shows over the accessibility bus.
#include <csignal>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "AccessibleTree.h"
#include "DemoSettings.h"
#include "DesktopSession.h"
#include "TraceReader.h"

namespace tovi {
namespace {

const QString program = QStringLiteral(TOVI_PROGRAM);
const QString sentence = QStringLiteral("The river is still rising.");

class ProgramDesktop : public testing::Test
{
protected:
    explicit ProgramDesktop(const DesktopSession::Options &options = {})
        : desktop(options)
    {}

    void SetUp() override { ASSERT_EQ(desktop.error(), QString()); }

    void startProgram()
    {
        tovi = desktop.start(program, {}, {trace.environment()});
        trace.programStarted();
        ASSERT_TRUE(tovi);
        ASSERT_TRUE(trace.next("ready"));
    }
    /// An editor with the sentence, all of it selected.
    void startEditor()
    {
        const QString file = desktop.writeFile(QStringLiteral("letter.txt"), sentence);
        editor = desktop.start(QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), file});
        ASSERT_TRUE(editor);
        editorWindow = desktop.waitForWindow(QStringLiteral("letter.txt"));
        ASSERT_TRUE(editorWindow);
    }
    /// Selects, presses the shortcut and answers the trace's word on the capture; tried until the editor,
    /// which handles its keys when it comes to it, has a selection.
    bool capture()
    {
        return DesktopSession::eventually([&] {
            desktop.click(desktop.geometry(editorWindow).center());
            desktop.pressKey(XK_a, {XK_Control_L});
            desktop.pressKeyTimed(XK_d, XK_Alt_L);
            const auto captured = trace.next("captured");
            // Its place tells that the text came from the editor and not from the primary selection.
            return captured && trace.next("panelPainted") && captured->numbers.value("bounds") == 1;
        });
    }
    QStringList shownTexts()
    {
        QStringList texts;
        for (const AccessibleTree::Node &node : AccessibleTree::read(tovi->processId())) {
            if (node.role == QLatin1String("text") && !node.text.isEmpty())
                texts << node.text;
        }
        return texts;
    }
    bool shows(const QString &part)
    {
        return DesktopSession::eventually(
            [&] { return shownTexts().join(QLatin1Char('\n')).contains(part); });
    }
    bool isEditorActive()
    {
        return DesktopSession::eventually([&] { return desktop.activeWindow() == editorWindow; });
    }
    QString settingsFile(const QString &name) const
    {
        return desktop.home() + QStringLiteral("/config/tovi/") + name;
    }

    DesktopSession desktop;
    TraceReader trace;
    QProcess *tovi = nullptr;
    QProcess *editor = nullptr;
    xcb_window_t editorWindow = 0;
};

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
    EXPECT_TRUE(DesktopSession::eventually([&] { return desktop.activeWindow() != editorWindow; }));
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
    if (!DesktopSession::isInstalled(QStringLiteral("mousepad")))
        GTEST_SKIP() << "mousepad is not installed";
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
    desktop.pressKey(XK_Escape);
    ASSERT_TRUE(isEditorActive());
    EXPECT_TRUE(capture());
}

TEST_F(ProgramDesktop, ADefaultsFileThatDoesNotParseIsKeptBesideTheNewOne)
{
    writeDemoSettings(desktop);
    QFile file(settingsFile(QStringLiteral("defaults.json")));
    ASSERT_TRUE(file.open(QFile::ReadWrite));
    const QByteArray cutOff = file.readAll().chopped(20);
    ASSERT_TRUE(file.resize(cutOff.size()));
    file.close();
    startProgram();
    tovi->terminate();
    ASSERT_TRUE(DesktopSession::eventually([&] { return tovi->state() == QProcess::NotRunning; }));
    EXPECT_EQ(tovi->exitCode(), 0);
    QStringList contents;
    for (const QString &name : QDir(settingsFile(QString())).entryList(QDir::Files)) {
        QFile each(settingsFile(name));
        ASSERT_TRUE(each.open(QFile::ReadOnly));
        contents << QString::fromUtf8(each.readAll());
    }
    EXPECT_TRUE(contents.contains(QString::fromUtf8(cutOff)));
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
            EXPECT_TRUE(handedOver && handedOver->numbers.value("count") == c.arguments.size());
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
    EXPECT_EQ(tovi->state(), QProcess::Running);
}

} // namespace
} // namespace tovi
