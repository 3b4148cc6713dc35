// SPDX-License-Identifier: MIT
// Works a result panel with real keys and a real pointer.
#include <QJsonArray>
#include <QJsonDocument>

#include "Desktop/ProgramFixture.h"
#include "ScriptedServer.h"

namespace tovi {
namespace {

/// Translates into "model, target language: text".
void answer(const ScriptedServer::Request &request, ScriptedServer::Reply &reply)
{
    const QJsonObject body = QJsonDocument::fromJson(request.body).object();
    const QJsonArray messages = body[QLatin1String("messages")].toArray();
    const auto content = [&](int i) { return messages.at(i)[QLatin1String("content")].toString(); };
    const QString text =
        QStringLiteral("%1, %2: %3").arg(body[QLatin1String("model")].toString(), content(0), content(1));
    const QJsonObject delta{{QStringLiteral("delta"), QJsonObject{{QStringLiteral("content"), text}}}};
    const QJsonObject event{{QStringLiteral("choices"), QJsonArray{delta}}};
    reply.answer(200, "data: " + QJsonDocument(event).toJson(QJsonDocument::Compact) + "\n\n");
}

class PanelDesktop : public ProgramDesktop
{
protected:
    using Node = AccessibleTree::Node;

    void SetUp() override
    {
        ProgramDesktop::SetUp();
        QJsonObject one = chatEngine(server.origin());
        one[QStringLiteral("name")] = QStringLiteral("First & best");
        one[QStringLiteral("model")] = QStringLiteral("one");
        one[QStringLiteral("systemPrompt")] = QStringLiteral("{{target}}");
        QJsonObject two = one;
        two[QStringLiteral("id")] = secondEngine;
        two[QStringLiteral("name")] = QStringLiteral("Second");
        two[QStringLiteral("model")] = QStringLiteral("two");
        writeDemoSettings(desktop, QJsonArray{one, two});
        startProgram();
        startEditor();
        ASSERT_TRUE(capture());
    }

    /// Buttons and fields tell what they hold behind what they are for.
    bool isNamed(const QString &name, const QString &wanted) const override { return name.contains(wanted); }
    bool clickSource() { return click(QStringLiteral("Source Language: "), QStringLiteral("text")); }
    bool hasPanels(int count)
    {
        return DesktopSession::eventually([&] { return nodes(pin).size() == count; }, patience);
    }
    /// A place of the editor that no panel covers.
    QPoint besides() const { return desktop.geometry(editorWindow).bottomLeft() + QPoint(30, -30); }

    const QString pin = QStringLiteral("Pin");
    const QString menuButton = QStringLiteral("button menu");
    const QString secondEngine = QStringLiteral("7D2B6C1E-52B4-4A57-9B0E-0C6E1B1C9A02");
    ScriptedServer server{answer};
};

TEST_F(PanelDesktop, IsWorkedByKeysAndPointer)
{
    ASSERT_TRUE(shows(QStringLiteral("one, Spanish: ") + sentence));

    // Pressed again with the panel open, the shortcut still means the editor and its selection.
    const QRect place = nodes(pin).value(0).extents;
    trace.clear();
    desktop.pressKeyTimed(XK_d, XK_Alt_L);
    const auto again = trace.next("captured");
    EXPECT_TRUE(again && again->numbers.value("bounds") == 1);
    ASSERT_TRUE(trace.next("panelPainted"));
    EXPECT_TRUE(hasPanels(1));
    EXPECT_EQ(nodes(pin).value(0).extents, place);

    // The pin, and the header as a handle.
    ASSERT_TRUE(click(pin));
    const QRect pinned = nodes(pin).value(0).extents;
    const QPoint header = pinned.center() + QPoint(70, 0);
    desktop.drag(header, header + QPoint(90, 160));
    EXPECT_TRUE(DesktopSession::eventually(
        [&] { return nodes(pin).value(0).extents.topLeft() == pinned.topLeft() + QPoint(90, 160); },
        patience));

    // What is copied can be pasted: here, into the source.
    ASSERT_TRUE(click(QStringLiteral("Copy")));
    ASSERT_TRUE(clickSource());
    desktop.pressKey(XK_End, {XK_Control_L});
    desktop.pressKey(XK_v, {XK_Control_L});
    EXPECT_TRUE(shows(sentence + QStringLiteral("one, Spanish: ") + sentence));

    // Another language becomes the default one, another engine as well.
    ASSERT_TRUE(click(QStringLiteral("Translate to"), menuButton));
    ASSERT_TRUE(click(QStringLiteral("Français")));
    EXPECT_TRUE(shows(QStringLiteral("one, French: ")));
    EXPECT_TRUE(isStored("targetLanguage", QStringLiteral("fr")));
    ASSERT_TRUE(click(QStringLiteral("Default Engine"), menuButton));
    ASSERT_TRUE(click(QStringLiteral("Second")));
    EXPECT_TRUE(shows(QStringLiteral("two, French: ")));
    EXPECT_TRUE(isStored("currentProviderID", secondEngine));

    // The source is edited and submitted.
    ASSERT_TRUE(clickSource());
    desktop.pressKey(XK_a, {XK_Control_L});
    for (const xcb_keysym_t key : {XK_h, XK_o, XK_u, XK_s, XK_e, XK_Return})
        desktop.pressKey(key);
    EXPECT_TRUE(shows(QStringLiteral("two, French: house")));

    // Further captures leave the pinned panel and replace the other one.
    ASSERT_TRUE(capture());
    EXPECT_TRUE(hasPanels(2));
    ASSERT_TRUE(capture());
    EXPECT_TRUE(hasPanels(2));
    EXPECT_TRUE(shows(QStringLiteral("two, French: house")));
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(hasPanels(1));
    EXPECT_TRUE(isEditorActive());

    // A click elsewhere closes what is not pinned, and the keyboard stays where it was clicked.
    ASSERT_TRUE(capture());
    EXPECT_TRUE(hasPanels(2));
    // A panel takes clicks for its own opening's at first.
    EXPECT_TRUE(DesktopSession::eventually([&] {
        desktop.click(besides());
        return nodes(pin).size() == 1;
    }));
    EXPECT_TRUE(isEditorActive());
    desktop.click(nodes(pin).value(0).extents.center() + QPoint(70, 0));
    ASSERT_TRUE(isPanelActive());
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(hasPanels(0));

    // The program's end asks no panel.
    ASSERT_TRUE(capture());
    ASSERT_TRUE(click(pin));
    ASSERT_TRUE(capture());
    EXPECT_TRUE(hasPanels(2));
    tovi->terminate();
    EXPECT_TRUE(DesktopSession::eventually([&] { return tovi->state() == QProcess::NotRunning; }));
}

TEST_F(PanelDesktop, IsReachedByTheKeyboardAlone)
{
    ASSERT_TRUE(shows(QStringLiteral("one, Spanish: ")));
    // Pin, close, source language.
    for (int i = 0; i < 3; ++i)
        desktop.pressKey(XK_Tab);
    desktop.pressKey(XK_space);
    ASSERT_TRUE(has(QStringLiteral("日本語")));
    // Esc belongs to the menu first.
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(hides(QStringLiteral("日本語")));
    EXPECT_EQ(nodes(pin).size(), 1);
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(hasPanels(0));
    EXPECT_TRUE(isEditorActive());
}

} // namespace
} // namespace tovi
