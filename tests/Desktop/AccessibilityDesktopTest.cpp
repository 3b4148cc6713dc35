// SPDX-License-Identifier: MIT
#include <QCoreApplication>

#include <X11/keysym.h>

#include "ChromiumArguments.h"
#include "Desktop/AccessibilityFixture.h"

namespace tovi {
namespace {

/// Both texts need two UTF-16 units for the first character.
const QString firstLine = QString::fromUtf8("🙂 Hello brave world");
const QString secondLine = QString::fromUtf8("and a second line");

/// Selections by the keyboard in an editor that shows the two lines.
class EditorDesktop : public AccessibilityDesktop
{
protected:
    void open(const QString &editor, const QString &option)
    {
        const QString file =
            desktop->writeFile(QStringLiteral("lines.txt"), firstLine + QLatin1Char('\n') + secondLine);
        ASSERT_TRUE(desktop->start(editor, {option, file}));
        ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("lines.txt")));
    }
    void select(xcb_keysym_t start, int skip, int length)
    {
        desktop->pressKey(start, {XK_Control_L});
        desktop->pressKey(XK_Home);
        for (int i = 0; i < skip; ++i)
            desktop->pressKey(XK_Right);
        for (int i = 0; i < length; ++i)
            desktop->pressKey(XK_Right, {XK_Shift_L});
    }

    /// Editors with `boundsBelow` say rightly where text below the first line is; the others say it wrongly.
    void readSelections(bool boundsBelow)
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        EXPECT_EQ(captureUntil(QString()).error, AXError::NoValue) << "nothing is selected";
        select(XK_Home, 2, 5);
        const Captured word = captureUntil(QStringLiteral("Hello"));
        EXPECT_EQ(word.text, QStringLiteral("Hello"));
        const QRectF window = desktop->geometry(desktop->activeWindow());
        ASSERT_TRUE(word.bounds);
        EXPECT_TRUE(window.contains(*word.bounds));
        EXPECT_LT(word.bounds->height(), 40);
        EXPECT_LT(word.bounds->width(), 120);
        EXPECT_EQ(textAt(word.bounds->center().toPoint()), QStringLiteral("Hello"));
        EXPECT_EQ(textAt({2, 2}), QString()) << "outside the window";

        desktop->pressKey(XK_End, {XK_Control_L, XK_Shift_L});
        const Captured rest = captureUntil(firstLine.mid(3) + QLatin1Char('\n') + secondLine);
        EXPECT_EQ(rest.text, firstLine.mid(3) + QLatin1Char('\n') + secondLine);
        ASSERT_EQ(rest.bounds.has_value(), boundsBelow);
        if (rest.bounds) {
            EXPECT_GT(rest.bounds->height(), word.bounds->height() * 1.5);
            EXPECT_NEAR(rest.bounds->top(), word.bounds->top(), 2);
        }

        select(XK_End, 6, 6);
        const Captured below = captureUntil(QStringLiteral("second"));
        EXPECT_EQ(below.text, QStringLiteral("second"));
        ASSERT_EQ(below.bounds.has_value(), boundsBelow);
        if (below.bounds) {
            EXPECT_GT(below.bounds->top(), word.bounds->center().y());
        }
    }
};

TEST_F(EditorDesktop, Gtk)
{
    open(QStringLiteral("mousepad"), QStringLiteral("--disable-server"));
    readSelections(true);
}

TEST_F(EditorDesktop, Qt)
{
    open(QStringLiteral("featherpad"), QStringLiteral("--standalone"));
    readSelections(false);
}

/// A page that selects parts of itself when keys are pressed.
const QString page = QString::fromUtf8(R"(<!doctype html><meta charset="utf-8"><title>Harbour</title>
<body><p>🙂 Ships leave the <a href="#x">old harbour</a> at dawn.</p>
<p>They carry 🚢 <b>salt</b> and <em>timber</em>.</p>
<ul><li>One</li><li>Two</li></ul>
<script>
function node(text) {
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (walker.nextNode())
        if (walker.currentNode.data.includes(text)) return walker.currentNode;
}
function select(first, last) {
    const from = node(first), to = node(last);
    getSelection().setBaseAndExtent(from, from.data.indexOf(first), to, to.data.indexOf(last) + last.length);
}
document.onkeydown = e => {
    if (e.key == '1') select('leave', 'salt');
    if (e.key == '2') select('Ships', 'Ships');
    if (e.key == '3') select('and', 'timber');
    if (e.key == '4') getSelection().removeAllRanges();
};
document.title = 'Harbour is open';
</script></body>)");

class BrowserDesktop : public AccessibilityDesktop
{
protected:
    void readSelections()
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        struct Case
        {
            xcb_keysym_t key;
            std::vector<xcb_keysym_t> modifiers;
            const char *text;
            int lines;
            bool byMarkerRange;
        };
        const Case cases[] = {
            {XK_1, {}, "leave the old harbour at dawn.\nThey carry 🚢 salt", 2, true},
            {XK_2, {}, "Ships", 1, true},
            {XK_3, {}, "and timber", 1, true},
            {XK_a,
             {XK_Control_L},
             "🙂 Ships leave the old harbour at dawn.\nThey carry 🚢 salt and timber.\n• One\n• Two",
             4,
             true},
            {XK_4, {}, "", 0, false},
        };
        for (const Case &one : cases) {
            SCOPED_TRACE(one.text);
            const QString text = QString::fromUtf8(one.text);
            Captured captured;
            // Chromium does not tell a selection that was made while it still prepared the page's tree.
            for (int tries = 0; tries < 6 && (tries == 0 || captured.text != text); ++tries) {
                desktop->pressKey(XK_4);
                desktop->pressKey(one.key, one.modifiers);
                captured = captureUntil(text, std::chrono::seconds(15));
            }
            EXPECT_EQ(captured.text, text);
            EXPECT_EQ(captured.byMarkerRange, one.byMarkerRange);
            if (one.lines == 0)
                continue;
            // Firefox collects rectangles only once somebody has asked for one.
            const QRectF window = desktop->geometry(desktop->activeWindow());
            EXPECT_TRUE(DesktopSession::eventually([&] {
                captured = capture();
                return captured.bounds && window.contains(*captured.bounds) &&
                       captured.bounds->height() > 20 * one.lines - 6 &&
                       captured.bounds->height() < 42 * one.lines;
            })) << (captured.bounds ? captured.bounds->height() : -1);
        }
    }
};

TEST_F(BrowserDesktop, Firefox)
{
    if (!DesktopSession::isInstalled(QStringLiteral("firefox-esr")))
        GTEST_SKIP() << "firefox-esr is not installed";
    const QString file = desktop->writeFile(QStringLiteral("harbour.html"), page);
    const QString profile = desktop->home() + QStringLiteral("/profile");
    QDir().mkpath(profile);
    desktop->writeFile(QStringLiteral("profile/user.js"),
                       QStringLiteral("user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
                                      "user_pref('browser.aboutwelcome.enabled', false);\n"
                                      "user_pref('app.update.enabled', false);\n"
                                      "user_pref('network.captive-portal-service.enabled', false);\n"
                                      "user_pref('browser.shell.checkDefaultBrowser', false);\n"));
    ASSERT_TRUE(desktop->start(QStringLiteral("firefox-esr"),
                               {QStringLiteral("--no-remote"), QStringLiteral("--profile"), profile, file}));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("Harbour is open")));
    readSelections();
}

TEST_F(BrowserDesktop, Chromium)
{
    const QString file = desktop->writeFile(QStringLiteral("harbour.html"), page);
    ASSERT_TRUE(desktop->start(QStringLiteral("chromium"),
                               QStringList{QStringLiteral("--force-renderer-accessibility")} +
                                   chromiumArguments(*desktop, {file})));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("Harbour is open")));
    readSelections();
}

TEST_F(AccessibilityDesktop, TerminalsTellTheirSelectionThroughPrimary)
{
    const QString file = desktop->writeFile(QStringLiteral("t.txt"), firstLine);
    ASSERT_TRUE(desktop->start(QStringLiteral("xterm"),
                               {QStringLiteral("-u8"), QStringLiteral("-geometry"),
                                QStringLiteral("60x10+200+200"), QStringLiteral("-e"),
                                QStringLiteral("cat ") + file + QStringLiteral("; sleep 600")}));
    const xcb_window_t terminal = desktop->waitForWindow(QString());
    ASSERT_TRUE(terminal);
    const QPoint word = desktop->geometry(terminal).topLeft() + QPoint(40, 10);
    Captured captured;
    EXPECT_TRUE(DesktopSession::eventually([&] {
        desktop->click(word, 3); // selects the line
        captured = capture();
        return captured.text.trimmed() == firstLine;
    })) << captured.text.toStdString();
    EXPECT_FALSE(captured.bounds);

    // Another application takes the selection over: the terminal's window does not tell that one.
    QProcess *other = desktop->start(
        QStringLiteral("xterm"), {QStringLiteral("-u8"), QStringLiteral("-title"), QStringLiteral("other"),
                                  QStringLiteral("-geometry"), QStringLiteral("60x10+200+500"),
                                  QStringLiteral("-e"), QStringLiteral("echo Another text; sleep 600")});
    ASSERT_TRUE(other);
    const xcb_window_t second = desktop->waitForWindow(QStringLiteral("other"));
    ASSERT_TRUE(second);
    const QPoint there = desktop->geometry(second).topLeft() + QPoint(40, 10);
    EXPECT_TRUE(DesktopSession::eventually([&] {
        desktop->click(there, 3);
        return capture().text.trimmed() == QStringLiteral("Another text");
    }));
    desktop->activate(terminal);
    captured = capture();
    EXPECT_EQ(captured.text, QString());
    EXPECT_EQ(captured.error, AXError::NoValue);
}

} // namespace
} // namespace tovi
