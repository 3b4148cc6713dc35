// SPDX-License-Identifier: MIT
// Which road the program takes to the selection in real applications, and what is left of the clipboard.
#include <csignal>

#include <QFile>

#include "Capture/CaptureResult.h"
#include "ChromiumArguments.h"
#include "Desktop/ProgramFixture.h"
#include "Platform/X11/X11Pasteboard.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

const QString copyTarget = QStringLiteral(TOVI_COPY_TARGET);
constexpr int nothing = -1;
constexpr int accessibility = int(CaptureSource::accessibility);
constexpr int browserScript = int(CaptureSource::browserScript);
constexpr int menuBarCopy = int(CaptureSource::menuBarCopy);
constexpr int clipboard = int(CaptureSource::clipboard);

class CaptureRoads : public ProgramDesktop
{
protected:
    void start(const QJsonObject &settings = {})
    {
        writeDemoSettings(desktop, {onDeviceEngine()}, settings);
        startProgram();
        const qint64 count = reader.changeCount();
        other.write(before);
        EXPECT_TRUE(DesktopSession::eventually([&] { return reader.changeCount() != count; }));
    }
    /// Waits for the application's window; whether there is one.
    bool open(const QString &program, const QStringList &arguments, const QString &title)
    {
        if (application)
            desktop.end(application);
        application = desktop.start(program, arguments);
        window = application ? desktop.waitForWindow(title) : 0;
        return window;
    }
    QPoint center() const { return desktop.geometry(window).center(); }
    QPoint firstLine() const { return desktop.geometry(window).topLeft() + QPoint(40, 10); }
    void selectAll()
    {
        desktop.click(center());
        desktop.pressKey(XK_a, {XK_Control_L});
    }
    /// Presses the shortcut after each try to select until the program takes this road.
    void expectRoad(const char *name, int source, const std::function<void()> &select)
    {
        int last = nothing;
        const bool isTaken = DesktopSession::eventually([&] {
            select();
            desktop.pressKeyTimed(XK_d, XK_Alt_L);
            const auto captured = trace.next("captured");
            if (!captured)
                return false;
            last = int(captured->numbers.value("source"));
            EXPECT_TRUE(leaves(window)) << "no panel";
            desktop.pressKey(XK_Escape);
            EXPECT_TRUE(isActive(window)) << "the panel stays";
            return last == source;
        });
        EXPECT_TRUE(isTaken) << name << ": " << last;
        EXPECT_TRUE(isClipboardBack()) << name;
    }
    /// As another program reads it; the program takes it back a moment after its capture.
    bool isClipboardBack()
    {
        return DesktopSession::eventually([this] {
            QList<PasteboardItem> items;
            for (const QString &type : reader.types(5s).value)
                items << reader.item(type, 5s).value;
            return items == before;
        });
    }
    /// The selection that programs show to others is another one's now.
    void takePrimary()
    {
        session.startDeadline(5s);
        xcb_set_selection_owner(session.connection(), primaryOwner, XCB_ATOM_PRIMARY, XCB_CURRENT_TIME);
        session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(session.connection()));
    }
    bool openBrowser(const QStringList &more)
    {
        const QString page = desktop.writeFile(
            QStringLiteral("page.html"),
            QStringLiteral("<!doctype html><title>Harbour</title><p>The harbour is deep.</p>"
                           "<script>getSelection().selectAllChildren(document.querySelector('p'))</script>"));
        return open(QStringLiteral("chromium"), chromiumArguments(desktop, more + QStringList{page}),
                    QStringLiteral("Harbour"));
    }

    const QList<PasteboardItem> before{
        {QStringLiteral("text/plain;charset=utf-8"), "before \xc3\xa9", QStringLiteral("text/plain/8")},
        {QStringLiteral("UTF8_STRING"), "before \xc3\xa9", QStringLiteral("UTF8_STRING/8")},
        {QStringLiteral("text/html"), "<b>before</b>", QStringLiteral("text/html/8")},
        {QStringLiteral("image/png"), QByteArray(700'000, '\x89'), QStringLiteral("image/png/8")},
        {QStringLiteral("application/x-own"), QByteArray("\0\1\2", 3), QStringLiteral("INTEGER/8")}};
    X11Pasteboard other;
    X11Pasteboard reader;
    XcbSession session;
    const xcb_window_t primaryOwner = [this] {
        const xcb_window_t id = xcb_generate_id(session.connection());
        xcb_create_window(session.connection(), 0, id, session.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        return id;
    }();
    QProcess *application = nullptr;
    xcb_window_t window = 0;
};

TEST_F(CaptureRoads, EachApplicationIsReadByTheLeastIntrusiveOne)
{
    start();
    const QString file = desktop.writeFile(QStringLiteral("letter.txt"), sentence);
    ASSERT_TRUE(open(QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), file},
                     QStringLiteral("letter")));
    expectRoad("GTK editor (mousepad)", accessibility, [&] { selectAll(); });
    ASSERT_TRUE(
        open(QStringLiteral("featherpad"), {QStringLiteral("--standalone"), file}, QStringLiteral("letter")));
    expectRoad("Qt editor (featherpad)", accessibility, [&] { selectAll(); });
    ASSERT_TRUE(open(QStringLiteral("xterm"),
                     {QStringLiteral("-T"), QStringLiteral("terminal"), QStringLiteral("-e"),
                      QStringLiteral("cat %1; sleep 600").arg(file)},
                     QStringLiteral("terminal")));
    expectRoad("terminal (xterm)", accessibility, [&] { desktop.click(firstLine(), 3); });
    ASSERT_TRUE(openBrowser({QStringLiteral("--force-renderer-accessibility")}));
    expectRoad("Chromium with accessibility", accessibility, [&] { selectAll(); });
    ASSERT_TRUE(openBrowser({}));
    expectRoad("Chromium without", accessibility, [&] { selectAll(); });
    ASSERT_TRUE(openBrowser({QStringLiteral("--remote-debugging-port=0")}));
    expectRoad("Chromium with its port open, primary elsewhere", browserScript, [&] {
        selectAll();
        takePrimary();
    });
    ASSERT_TRUE(open(copyTarget, {sentence}, QStringLiteral("copy target")));
    expectRoad("window with a Copy item", menuBarCopy, [] {});
    ASSERT_TRUE(open(copyTarget, {QStringLiteral("--no-menu"), sentence}, QStringLiteral("copy target")));
    expectRoad("window without a menu", clipboard, [] {});
}

TEST_F(CaptureRoads, TheNextOneServesWhereOneIsSwitchedOff)
{
    start({{QStringLiteral("browserScriptEnabled"), false}, {QStringLiteral("preferMenuBarCopy"), false}});
    ASSERT_TRUE(openBrowser({QStringLiteral("--remote-debugging-port=0")}));
    expectRoad("Chromium, no scripts", clipboard, [&] {
        selectAll();
        takePrimary();
    });
    ASSERT_TRUE(open(copyTarget, {sentence}, QStringLiteral("copy target")));
    expectRoad("window with a Copy item, menus not preferred", clipboard, [] {});

    // The user keeps the shortcut's modifier down.
    trace.clear();
    desktop.setKey(XK_Alt_L, true);
    desktop.pressKey(XK_d);
    const auto captured = trace.next("captured");
    desktop.setKey(XK_Alt_L, false);
    ASSERT_TRUE(captured);
    EXPECT_EQ(captured->numbers.value("source"), clipboard);
    EXPECT_TRUE(isClipboardBack());
}

TEST_F(CaptureRoads, WhatCopiesNoTextYieldsNone)
{
    start();
    const qint64 count = reader.changeCount();
    ASSERT_TRUE(open(copyTarget, {QStringLiteral("--disabled"), sentence}, QStringLiteral("copy target")));
    expectRoad("its Copy item is disabled", nothing, [] {});
    EXPECT_EQ(reader.changeCount(), count);

    // What runs in a terminal is not interrupted, whether the terminal has a key for copying or not.
    const QString mark = desktop.home() + QStringLiteral("/interrupted");
    const QString script = QStringLiteral("trap 'touch %1' INT; while :; do sleep 1; done").arg(mark);
    for (const char *terminal : {"xterm", "lxterminal"}) {
        if (!DesktopSession::isInstalled(QLatin1String(terminal)))
            continue;
        ASSERT_TRUE(open(QLatin1String(terminal),
                         {QStringLiteral("-T"), QStringLiteral("terminal"), QStringLiteral("-e"),
                          QStringLiteral("bash -c \"%1\"").arg(script)},
                         QStringLiteral("terminal")));
        takePrimary();
        expectRoad(terminal, nothing, [] {});
        EXPECT_FALSE(QFile::exists(mark)) << terminal;
    }
}

TEST_F(CaptureRoads, CopyingTwiceTranslates)
{
    start();
    startEditor();
    const auto copy = [&] { desktop.pressKey(XK_c, {XK_Control_L}); };
    ASSERT_TRUE(DesktopSession::eventually([&] {
        desktop.click(desktop.geometry(editorWindow).center());
        desktop.pressKey(XK_a, {XK_Control_L});
        copy();
        DesktopSession::rest(1500ms); // longer than the two may be apart, on a busy machine, too
        return reader.text(1s).value.text == sentence;
    }));
    EXPECT_TRUE(shownTexts().isEmpty());
    // The machine may be too slow for a pair now and then.
    ASSERT_TRUE(DesktopSession::eventually([&] {
        copy();
        copy();
        return !shownTexts().isEmpty();
    }));
    EXPECT_TRUE(shows(sentence));
    EXPECT_EQ(reader.text(1s).value.text, sentence);

    // In the panel itself it copies and nothing more.
    ASSERT_TRUE(isPanelActive());
    trace.clear();
    desktop.pressKey(XK_a, {XK_Control_L});
    copy();
    copy();
    desktop.pressKey(XK_Escape);
    EXPECT_TRUE(isEditorActive());
    EXPECT_TRUE(DesktopSession::eventually([&] { return shownTexts().isEmpty(); }));
}

} // namespace
} // namespace tovi
