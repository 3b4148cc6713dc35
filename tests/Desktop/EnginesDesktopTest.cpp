// SPDX-License-Identifier: MIT
// Manages engines and records shortcuts in the real settings window, with real keys and a real pointer.
#include <QJsonArray>
#include <QJsonDocument>

#include "Desktop/ProgramFixture.h"
#include "Platform/X11/XcbSession.h"
#include "ScriptedServer.h"

namespace tovi {
namespace {

/// Answers by the model's name: a status, or a translation.
void answer(const ScriptedServer::Request &request, ScriptedServer::Reply &reply)
{
    const QString model = QJsonDocument::fromJson(request.body)[QLatin1String("model")].toString();
    if (const int status = model.toInt()) {
        reply.answer(status, "{}");
        return;
    }
    const QJsonObject message{{QStringLiteral("content"), QStringLiteral("Hola from ") + model}};
    const QJsonObject choice{{QStringLiteral("message"), message}};
    reply.answer(200, QJsonDocument(QJsonObject{{QStringLiteral("choices"), QJsonArray{choice}}}).toJson());
}

class EnginesDesktop : public ProgramDesktop
{
protected:
    using Node = AccessibleTree::Node;

    void openSettings(const QString &pane)
    {
        writeDemoSettings(desktop, {chatEngine(server.origin())},
                          {{QStringLiteral("appLanguage"), QStringLiteral("en")}});
        tovi =
            desktop.start(program, {QStringLiteral("--settings")},
                          {trace.environment(), QStringLiteral("TOVI_OPENAI_BASE_URL=") + server.origin()});
        trace.programStarted();
        ASSERT_TRUE(tovi && trace.next("ready"));
        window = desktop.waitForWindow(QStringLiteral("Tovi Settings"));
        ASSERT_TRUE(window);
        ASSERT_TRUE(click(pane, QStringLiteral("radio button")));
    }
    void type(const char *text)
    {
        for (; *text; ++text)
            desktop.pressKey(xcb_keysym_t(*text)); // the symbols of these characters have their numbers
    }
    /// By the menu bar's keys: to the second menu, and up to its last item.
    void selectAllByMenu()
    {
        for (const xcb_keysym_t key : {XK_Alt_L, XK_Right, XK_Down, XK_Up, XK_Return})
            desktop.pressKey(key);
    }
    /// Records for this action, once the program has given back the keys that it holds.
    bool startRecording(const QString &action)
    {
        return click(action, pushButton) && DesktopSession::eventually([this] { return isFree(keyS); });
    }
    /// Whether nobody holds Alt with this key of the server's.
    bool isFree(xcb_keycode_t key)
    {
        auto *connection = session.connection();
        const auto grab = xcb_grab_key_checked(connection, 0, session.root(), XCB_MOD_MASK_1, key,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        if (XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, grab)))
            return false;
        const auto ungrab = xcb_ungrab_key_checked(connection, key, session.root(), XCB_MOD_MASK_1);
        return !XcbOwned<xcb_generic_error_t>(xcb_request_check(connection, ungrab));
    }
    void tab(int times, const std::vector<xcb_keysym_t> &modifiers = {})
    {
        for (int i = 0; i < times; ++i)
            desktop.pressKey(XK_Tab, modifiers);
    }

    const QString pushButton = QStringLiteral("push button");
    const QString listItem = QStringLiteral("list item");
    static constexpr xcb_keycode_t keyS = 39;
    XcbSession session;
    ScriptedServer server{answer};
    xcb_window_t window = 0;
};

TEST_F(EnginesDesktop, AnEngineIsAddedEditedTestedCopiedAndRemoved)
{
    openSettings(QStringLiteral("Translation"));
    ASSERT_TRUE(has(QStringLiteral("Chat, demo, Default")));
    ASSERT_TRUE(click(QStringLiteral("Add")));
    ASSERT_TRUE(has(QStringLiteral("OpenAI-compatible, gpt-4o-mini, Default")));
    ASSERT_TRUE(click(QStringLiteral("API Key")));
    type("hush");
    tab(1, {XK_Shift_L});

    // From the model on to the test's button, and back: the keyboard is enough.
    struct Case
    {
        const char *model;
        QString outcome;
    };
    const Case cases[] = {
        {"", QStringLiteral("Please fill in a model name")},
        {"401", QStringLiteral("API key is invalid or lacks permission")},
        {"404", QStringLiteral("Endpoint or model not found")},
        {"429", QStringLiteral("Rate limited or quota exceeded")},
        {"500", QStringLiteral("Server error")},
        {"one", QStringLiteral("Connection OK: Hola from one")},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.model);
        selectAllByMenu();
        desktop.pressKey(XK_BackSpace);
        type(c.model);
        tab(5);
        desktop.pressKey(XK_space);
        ASSERT_TRUE(has(c.outcome));
        tab(5, {XK_Shift_L});
    }
    ASSERT_EQ(server.requests().size(), 5) << "without a model nothing is sent";
    EXPECT_EQ(server.requests().last().header("Authorization"), "Bearer hush");

    ASSERT_TRUE(click(QStringLiteral("Duplicate"), pushButton));
    ASSERT_TRUE(has(QStringLiteral("OpenAI-compatible Copy, one")));
    ASSERT_TRUE(click(QStringLiteral("Chat, demo"), listItem, 3));
    ASSERT_TRUE(click(QStringLiteral("Set as Default"), QStringLiteral("menu item")));
    ASSERT_TRUE(has(QStringLiteral("Chat, demo, Default")));
    ASSERT_TRUE(click(QStringLiteral("Remove"), pushButton));
    ASSERT_TRUE(hides(QStringLiteral("OpenAI-compatible Copy, one")));
    ASSERT_TRUE(
        DesktopSession::eventually([&] { return setting("providers").toArray().size() == 4; }, patience));
    for (const Node &node : AccessibleTree::read(tovi->processId()))
        EXPECT_FALSE((node.name + node.text).contains(QLatin1String("hush")));

    tovi->terminate();
    ASSERT_TRUE(DesktopSession::eventually([&] { return tovi->state() == QProcess::NotRunning; }));
    const QString stored = QString::fromUtf8(QJsonDocument(setting("providers").toArray()).toJson());
    EXPECT_TRUE(stored.contains(QLatin1String("\"one\"")));
    EXPECT_FALSE(stored.contains(QLatin1String("hush")));
}

TEST_F(EnginesDesktop, AShortcutIsRecordedAndWorksAtOnce)
{
    const auto keys = [](int code, int modifiers) {
        return QJsonObject{{QStringLiteral("keyCode"), code}, {QStringLiteral("modifiers"), modifiers}};
    };
    const QString recorder = QStringLiteral("Translate Selection");
    const QString duplicate = QStringLiteral("This shortcut is used by more than one action");
    openSettings(QStringLiteral("Shortcuts"));

    // The keys that the program itself holds for another action can be recorded.
    ASSERT_TRUE(startRecording(recorder));
    desktop.pressKey(XK_k);
    desktop.pressKey(XK_s, {XK_Alt_L});
    EXPECT_TRUE(isStored("captureHotKey", keys(1, 2048)));
    EXPECT_TRUE(DesktopSession::eventually([&] { return nodes(duplicate).size() == 2; }, patience));

    ASSERT_TRUE(startRecording(recorder));
    desktop.pressKey(XK_BackSpace);
    EXPECT_TRUE(isStored("captureHotKey", keys(0, 0)));
    EXPECT_TRUE(hides(duplicate));

    ASSERT_TRUE(startRecording(recorder));
    desktop.pressKey(XK_q, {XK_Control_L, XK_Super_L, XK_Shift_L});
    EXPECT_TRUE(isStored("captureHotKey", keys(12, 256 + 4096 + 512)));
    trace.clear();
    // It is stored a moment before it is registered.
    EXPECT_TRUE(DesktopSession::eventually([&] {
        desktop.pressKey(XK_q, {XK_Control_L, XK_Super_L, XK_Shift_L});
        return trace.next("captured").has_value();
    }));
}

} // namespace
} // namespace tovi
