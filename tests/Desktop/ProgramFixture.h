// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonValue>
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
    /// Whether an object of this name is meant.
    virtual bool isNamed(const QString &name, const QString &wanted) const { return name == wanted; }
    /// The shown objects of this name, and of any role when it is empty.
    QList<AccessibleTree::Node> nodes(const QString &name, const QString &role = {}) const
    {
        QList<AccessibleTree::Node> found;
        for (const AccessibleTree::Node &node : AccessibleTree::read(tovi->processId())) {
            if (isNamed(node.name, name) && (role.isEmpty() || node.role == role) && !node.extents.isEmpty())
                found << node;
        }
        return found;
    }
    bool has(const QString &name, const QString &role = {})
    {
        return DesktopSession::eventually([&] { return !nodes(name, role).isEmpty(); }, patience);
    }
    bool hides(const QString &name)
    {
        return DesktopSession::eventually([&] { return nodes(name).isEmpty(); }, patience);
    }
    /// Clicks the last of them once it is shown.
    bool click(const QString &name, const QString &role = {}, int button = 1)
    {
        QList<AccessibleTree::Node> found;
        if (!DesktopSession::eventually([&] { return !(found = nodes(name, role)).isEmpty(); }, patience))
            return false;
        desktop.click(found.last().extents.center(), 1, button);
        return true;
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
    bool isPanelActive() { return leaves(editorWindow); }
    bool leaves(xcb_window_t window)
    {
        return DesktopSession::eventually([&] {
            const xcb_window_t active = desktop.activeWindow();
            return active && active != window;
        });
    }
    bool isActive(xcb_window_t window)
    {
        return DesktopSession::eventually([&] { return desktop.activeWindow() == window; });
    }
    bool isEditorActive() { return isActive(editorWindow); }
    QString settingsFile(const QString &name) const
    {
        return desktop.home() + QStringLiteral("/config/tovi/") + name;
    }
    QJsonValue setting(const char *key) const
    {
        QFile file(settingsFile(QStringLiteral("defaults.json")));
        return file.open(QFile::ReadOnly) ? QJsonDocument::fromJson(file.readAll())[QLatin1String(key)]
                                          : QJsonValue();
    }
    bool isStored(const char *key, const QJsonValue &value)
    {
        return DesktopSession::eventually([&] { return setting(key) == value; }, patience);
    }

    static constexpr std::chrono::seconds patience{20};

    DesktopSession desktop;
    TraceReader trace;
    QProcess *tovi = nullptr;
    QProcess *editor = nullptr;
    xcb_window_t editorWindow = 0;
};

} // namespace tovi
