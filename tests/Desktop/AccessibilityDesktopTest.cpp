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

} // namespace
} // namespace tovi

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
