// SPDX-License-Identifier: MIT
// Reads text off the screen with real keys, a real pointer and real applications.
#include "Desktop/ProgramFixture.h"

namespace tovi {
namespace {

const QString phrase = QStringLiteral("The river is still rising");

class OCRDesktop : public ProgramDesktop
{
protected:
    using ProgramDesktop::ProgramDesktop;

    void SetUp() override
    {
        ProgramDesktop::SetUp();
        writeDemoSettings(desktop);
        startProgram();
        terminal = desktop.start(QStringLiteral("xterm"),
                                 {QStringLiteral("-T"), QStringLiteral("pixels"), QStringLiteral("-geometry"),
                                  QStringLiteral("60x12+100+100"), QStringLiteral("-fa"),
                                  QStringLiteral("Noto Sans Mono"), QStringLiteral("-fs"),
                                  QStringLiteral("12"), QStringLiteral("-e"),
                                  QStringLiteral("echo; echo '   %1.'; sleep 900").arg(phrase)});
        terminalWindow = desktop.waitForWindow(QStringLiteral("pixels"));
        ASSERT_TRUE(terminalWindow);
    }

    QProcess *terminal = nullptr;
    xcb_window_t terminalWindow = 0;
};

TEST_F(OCRDesktop, ADraggedRegionIsReadAndTranslated)
{
    const QRect window = desktop.geometry(terminalWindow);
    DesktopSession::rest(std::chrono::seconds(1));
    desktop.screenshot().save(QStringLiteral("/tmp/ocr0.png"));
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    DesktopSession::rest(std::chrono::seconds(1));
    desktop.screenshot().save(QStringLiteral("/tmp/ocr1.png"));
    desktop.movePointer(window.topLeft() + QPoint(5, 5));
    desktop.drag(window.topLeft() + QPoint(5, 5), window.topLeft() + QPoint(400, 80));
    DesktopSession::rest(std::chrono::milliseconds(300));
    desktop.screenshot().save(QStringLiteral("/tmp/ocr2.png"));
    EXPECT_TRUE(shows(phrase));
    DesktopSession::rest(std::chrono::seconds(3));
    desktop.screenshot().save(QStringLiteral("/tmp/ocr3.png"));
}

} // namespace
} // namespace tovi
