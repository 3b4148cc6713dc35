// SPDX-License-Identifier: MIT
#include <QCoreApplication>

#include <X11/keysym.h>

#include "Desktop/AccessibilityFixture.h"

namespace tovi {
namespace {

/// Both texts need two UTF-16 units for the first character.
const QString firstLine = QString::fromUtf8("🙂 Hello brave world");
const QString secondLine = QString::fromUtf8("and a second line");

/// Selects the word after the emoji, then everything, in an editor that shows the two lines.
class EditorDesktop : public AccessibilityDesktop
{
protected:
    void readSelections(const char *name, bool boundsOfSeveralLines)
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        desktop->pressKey(XK_Home, {XK_Control_L});
        desktop->pressKey(XK_Right);
        desktop->pressKey(XK_Right);
        EXPECT_EQ(captureUntil(QString()).error, AXError::NoValue) << "nothing is selected";
        for (int i = 0; i < 5; ++i)
            desktop->pressKey(XK_Right, {XK_Shift_L});
        const Captured word = captureUntil(QStringLiteral("Hello"));
        EXPECT_EQ(word.text, QStringLiteral("Hello"));
        print(name, word);
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
        ASSERT_EQ(rest.bounds.has_value(), boundsOfSeveralLines);
        if (rest.bounds) {
            EXPECT_GT(rest.bounds->height(), word.bounds->height() * 1.5);
            EXPECT_NEAR(rest.bounds->top(), word.bounds->top(), 2);
        }
    }
};

TEST_F(EditorDesktop, Gtk)
{
    if (!DesktopSession::isInstalled(QStringLiteral("mousepad")))
        GTEST_SKIP() << "mousepad is not installed";
    const QString file =
        desktop->writeFile(QStringLiteral("gtk.txt"), firstLine + QLatin1Char('\n') + secondLine);
    ASSERT_TRUE(desktop->start(QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), file}));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("gtk.txt")));
    readSelections("mousepad", true);
}

TEST_F(EditorDesktop, Qt)
{
    if (!DesktopSession::isInstalled(QStringLiteral("featherpad")))
        GTEST_SKIP() << "featherpad is not installed";
    const QString file =
        desktop->writeFile(QStringLiteral("qt.txt"), firstLine + QLatin1Char('\n') + secondLine);
    ASSERT_TRUE(desktop->start(QStringLiteral("featherpad"), {QStringLiteral("--standalone"), file},
                               {QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1")}));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("qt.txt")));
    readSelections("featherpad", true);
}

const QString page = QStringLiteral(R"(<!doctype html><meta charset="utf-8"><title>Harbour</title>
<body><p id=a>🙂 Ships leave the <a href="#x">old harbour</a> at dawn.</p>
<p>They carry 🚢 <b>salt</b> and <em>timber</em>.</p>
<ul><li>One</li><li>Two</li></ul></body>)");
const QString pageText = QString::fromUtf8(
    "🙂 Ships leave the old harbour at dawn.\nThey carry 🚢 salt and timber.\n• One\n• Two");

/// Everything on a page, then a part of a paragraph by the keyboard, then a word by double click.
class BrowserDesktop : public AccessibilityDesktop
{
protected:
    void readSelections(const char *name)
    {
        ASSERT_TRUE(waitForAccessibleFocus());
        desktop->pressKey(XK_a, {XK_Control_L});
        const Captured all = captureUntil(pageText);
        EXPECT_EQ(all.text, pageText);
        EXPECT_TRUE(all.byMarkerRange);
        print(name, all);
        ASSERT_TRUE(all.bounds);
        const QRectF window = desktop->geometry(desktop->activeWindow());
        EXPECT_TRUE(window.contains(*all.bounds));
        EXPECT_GT(all.bounds->height(), 60);
        desktop->screenshot().save(QStringLiteral("/tmp/atspi/%1.png").arg(QLatin1String(name)));
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
                               {QStringLiteral("--no-remote"), QStringLiteral("--profile"), profile, file},
                               {QStringLiteral("GNOME_ACCESSIBILITY=1")}));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("Harbour")));
    readSelections("firefox");
}

TEST_F(BrowserDesktop, Chromium)
{
    if (!DesktopSession::isInstalled(QStringLiteral("chromium")))
        GTEST_SKIP() << "chromium is not installed";
    const QString file = desktop->writeFile(QStringLiteral("harbour.html"), page);
    ASSERT_TRUE(desktop->start(
        QStringLiteral("chromium"),
        {QStringLiteral("--no-sandbox"), QStringLiteral("--force-renderer-accessibility"),
         QStringLiteral("--no-first-run"), QStringLiteral("--disable-gpu"), QStringLiteral("--disable-quic"),
         QStringLiteral("--disable-background-networking"), QStringLiteral("--disable-component-update"),
         QStringLiteral("--disable-sync"), QStringLiteral("--password-store=basic"),
         QStringLiteral("--user-data-dir=") + desktop->home() + QStringLiteral("/chromium"), file}));
    ASSERT_TRUE(desktop->waitForWindow(QStringLiteral("Harbour")));
    readSelections("chromium");
}

TEST_F(AccessibilityDesktop, TerminalsTellTheirSelectionThroughPrimary)
{
    if (!DesktopSession::isInstalled(QStringLiteral("xterm")))
        GTEST_SKIP() << "xterm is not installed";
    const QString file = desktop->writeFile(QStringLiteral("t.txt"), firstLine);
    ASSERT_TRUE(desktop->start(QStringLiteral("xterm"),
                               {QStringLiteral("-u8"), QStringLiteral("-geometry"),
                                QStringLiteral("60x10+200+200"), QStringLiteral("-e"),
                                QStringLiteral("cat ") + file + QStringLiteral("; sleep 600")}));
    const xcb_window_t terminal = desktop->waitForWindow(QString());
    ASSERT_TRUE(terminal);
    Captured captured;
    EXPECT_TRUE(DesktopSession::eventually([&] {
        const QRect place = desktop->geometry(terminal);
        desktop->click(place.topLeft() + QPoint(60, 10), 2);
        captured = capture();
        return !captured.text.isEmpty();
    }));
    EXPECT_TRUE(firstLine.contains(captured.text)) << captured.text.toStdString();
    EXPECT_FALSE(captured.bounds);
    print("xterm", captured);
}

} // namespace
} // namespace tovi

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
