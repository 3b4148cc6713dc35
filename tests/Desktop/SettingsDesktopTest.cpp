// SPDX-License-Identifier: MIT
// The settings and the welcome window, worked by real clicks and keys.
#include <QJsonObject>

#include "Desktop/ProgramFixture.h"

namespace tovi {
namespace {

class SettingsDesktop : public ProgramDesktop
{
protected:
    bool isGone(const QString &title)
    {
        return DesktopSession::eventually([&] {
            const auto nodes = AccessibleTree::read(tovi->processId());
            return !nodes.isEmpty() && std::none_of(nodes.begin(), nodes.end(), [&](const auto &node) {
                return node.role == QLatin1String("frame") && node.name == title;
            });
        });
    }
};

TEST_F(SettingsDesktop, PanesAreWorkedByMouseAndKeys)
{
    writeDemoSettings(desktop, {onDeviceEngine()}, {{QStringLiteral("appLanguage"), QStringLiteral("en")}});
    startProgram();
    desktop.start(program, {QStringLiteral("--settings")});
    const xcb_window_t window = desktop.waitForWindow(QStringLiteral("Tovi Settings"));
    ASSERT_TRUE(window);
    EXPECT_EQ(desktop.title(window), QStringLiteral("Tovi Settings"));

    ASSERT_TRUE(click(QStringLiteral("Show phonetics and definitions for English words"),
                      QStringLiteral("check box")));
    EXPECT_TRUE(isStored("enableDictionary", false));
    desktop.pressKey(XK_space);
    EXPECT_TRUE(isStored("enableDictionary", true));
    // The trigger, the position, then the width.
    for (int i = 0; i < 3; ++i)
        desktop.pressKey(XK_Tab);
    desktop.pressKey(XK_Right);
    EXPECT_TRUE(isStored("resultPanelWidth", 390));

    desktop.pressKey(XK_Home);
    EXPECT_TRUE(isStored("resultPanelWidth", 300));
    for (int i = 0; i < 7; ++i)
        desktop.pressKey(XK_Tab, {XK_Shift_L});
    ASSERT_TRUE(click(QStringLiteral("English"), QStringLiteral("combo box")));
    ASSERT_TRUE(click(QStringLiteral("Deutsch"), QStringLiteral("menu item")));
    EXPECT_TRUE(isStored("appLanguage", QStringLiteral("de")));
    EXPECT_TRUE(DesktopSession::eventually(
        [&] { return desktop.title(window) == QStringLiteral("Tovi-Einstellungen"); }));
    EXPECT_TRUE(has(QStringLiteral("Zielsprache"), QStringLiteral("label")));

    ASSERT_TRUE(click(QStringLiteral("Berechtigungen"), QStringLiteral("radio button")));
    EXPECT_TRUE(has(QStringLiteral("Status aktualisieren"), QStringLiteral("push button")));
    desktop.pressKey(XK_Left);
    EXPECT_TRUE(has(QStringLiteral("Auf Standardwerte zurücksetzen"), QStringLiteral("push button")));
    desktop.pressKey(XK_F4, {XK_Alt_L});
    EXPECT_TRUE(isGone(QStringLiteral("Tovi-Einstellungen")));
    EXPECT_EQ(tovi->state(), QProcess::Running);
}

TEST_F(SettingsDesktop, ANewUserIsWelcomedOnce)
{
    writeDemoSettings(desktop, {onDeviceEngine()},
                      {{QStringLiteral("appLanguage"), QStringLiteral("en")},
                       {QStringLiteral("hasCompletedOnboarding"), false}});
    startProgram();
    const QString title = QStringLiteral("Welcome to Tovi");
    ASSERT_TRUE(desktop.waitForWindow(title));
    ASSERT_TRUE(has(QStringLiteral("Get Started"), QStringLiteral("push button")));
    desktop.pressKey(XK_Return);
    EXPECT_TRUE(isGone(title));
    EXPECT_TRUE(isStored("hasCompletedOnboarding", true));
}

} // namespace
} // namespace tovi
