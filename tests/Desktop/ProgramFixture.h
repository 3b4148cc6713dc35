// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <X11/keysym.h>
#include <gtest/gtest.h>

#include "AccessibleTree.h"
#include "DemoSettings.h"
#include "DesktopSession.h"
#include "TraceReader.h"

namespace tovi {

inline const QString program = QStringLiteral(TOVI_PROGRAM);
inline const QString sentence = QStringLiteral("The river is still rising.");

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
            return captured && trace.next("panelPainted") && captured->numbers.value("bounds") == 1 &&
                   isPanelActive();
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
    /// It is painted a moment before it gets the keyboard.
    bool isPanelActive()
    {
        return DesktopSession::eventually([&] { return desktop.activeWindow() != editorWindow; });
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

} // namespace tovi
