// SPDX-License-Identifier: MIT
// Reads text off the screen with real keys, a real pointer and a real application.
#include "Desktop/ProgramFixture.h"

namespace tovi {
namespace {

const QString translation = QStringLiteral("El río todavía está ascendiendo");
const QString noText = QStringLiteral("No text recognized.");

class OCRDesktop : public ProgramDesktop
{
protected:
    using ProgramDesktop::ProgramDesktop;

    /// A terminal: text that nobody selected, in a window that tells it to nobody.
    void start(const QJsonObject &settings = {})
    {
        writeDemoSettings(desktop, QJsonArray{onDeviceEngine()}, settings);
        startProgram();
        const QStringList options{QStringLiteral("-T"),
                                  QStringLiteral("pixels"),
                                  QStringLiteral("-geometry"),
                                  QStringLiteral("60x20+100+100"),
                                  QStringLiteral("-fa"),
                                  QStringLiteral("Noto Sans Mono"),
                                  QStringLiteral("-fs"),
                                  QStringLiteral("12"),
                                  QStringLiteral("-e"),
                                  QStringLiteral("printf '\\033[?25l\\n   %1\\n'; sleep 900").arg(sentence)};
        ASSERT_TRUE(desktop.start(QStringLiteral("xterm"), options));
        const xcb_window_t window = desktop.waitForWindow(QStringLiteral("pixels"));
        ASSERT_TRUE(window);
        terminal = desktop.geometry(window);
        line = {terminal.topLeft() + QPoint(10, 15), QSize(330, 40)};
        blank = {terminal.topLeft() + QPoint(10, 250), QSize(300, 60)};
        ASSERT_TRUE(
            DesktopSession::eventually([&] { return darkest(desktop.screenshot().copy(line)) < 60; }));
    }
    static int darkest(const QImage &image)
    {
        int least = 255;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                least = std::min(least, qGray(image.pixel(x, y)));
        }
        return least;
    }
    static int brightest(QImage image)
    {
        image.invertPixels();
        return 255 - darkest(image);
    }
    /// Nothing of the program's logo.
    static bool isGray(const QImage &image)
    {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (QColor(image.pixel(x, y)).saturation() > 60)
                    return false;
            }
        }
        return true;
    }
    bool isDimmed(QPoint point) { return qGray(desktop.screenshot().pixel(point)) < 200; }
    bool overlayComes()
    {
        return DesktopSession::eventually([&] { return isDimmed(blank.center()); });
    }
    bool overlayGoes()
    {
        return DesktopSession::eventually([&] { return !isDimmed(blank.center()); });
    }
    /// It is painted a moment before it gets the keyboard.
    bool overlayGoesByKey()
    {
        return DesktopSession::eventually([&] {
            desktop.pressKey(XK_Escape);
            return !isDimmed(blank.center());
        });
    }
    bool select(const QRect &region)
    {
        desktop.pressKeyTimed(XK_s, XK_Alt_L);
        if (!overlayComes())
            return false;
        desktop.drag(region.topLeft(), region.topLeft() + QPoint(region.width(), region.height()));
        return true;
    }
    QStringList words()
    {
        QStringList all;
        for (const AccessibleTree::Node &node : AccessibleTree::read(tovi->processId())) {
            if (!node.extents.isEmpty())
                all << node.name << node.text;
        }
        return all;
    }
    bool says(const QString &part)
    {
        return DesktopSession::eventually([&] { return words().join(QLatin1Char('\n')).contains(part); });
    }
    /// Closes the panel that shows something.
    bool close()
    {
        return DesktopSession::eventually([&] {
            desktop.pressKey(XK_Escape);
            return words().isEmpty();
        });
    }

    QRect terminal, line, blank;
};

class OCRWithCompositor : public OCRDesktop, public testing::WithParamInterface<bool>
{
protected:
    OCRWithCompositor()
        : OCRDesktop({.compositor = GetParam()})
    {}
};
INSTANTIATE_TEST_SUITE_P(, OCRWithCompositor, testing::Bool());

TEST_P(OCRWithCompositor, ADraggedRegionIsReadAndTranslated)
{
    start();
    ASSERT_TRUE(select(line));
    EXPECT_TRUE(says(sentence) && says(translation));
    // The panel goes with the shortcut, also from where the screen is only a picture of itself.
    EXPECT_TRUE(DesktopSession::eventually([&] { return !isGray(desktop.screenshot().copy(terminal)); }));
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    ASSERT_TRUE(overlayComes());
    EXPECT_TRUE(DesktopSession::eventually([&] { return isGray(desktop.screenshot().copy(terminal)); }));
    ASSERT_TRUE(overlayGoesByKey());

    // Too narrow for a drag, so what is around the end of it is read.
    ASSERT_TRUE(select({line.center() - QPoint(7, 180), QSize(7, 200)}));
    EXPECT_TRUE(says(QStringLiteral("river is still")));
    ASSERT_TRUE(close());

    ASSERT_TRUE(select(blank));
    EXPECT_TRUE(says(noText));
    ASSERT_TRUE(close());

    // Leaving, and starting over while the overlay holds the keyboard.
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    ASSERT_TRUE(overlayComes());
    desktop.click(blank.center(), 1, 3);
    EXPECT_TRUE(overlayGoes());
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    ASSERT_TRUE(overlayComes());
    ASSERT_TRUE(select(line));
    EXPECT_TRUE(overlayGoes());
    EXPECT_TRUE(says(sentence));
}

TEST_F(OCRDesktop, TheAreaAroundThePointerIsRead)
{
    start({{QStringLiteral("ocrRegionSelection"), false}});
    desktop.movePointer(line.center());
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    EXPECT_TRUE(says(sentence) && says(translation));
    // The pinned panel's own texts stand beside the line now; none of them is read.
    ASSERT_TRUE(click(QStringLiteral("Pin")));
    ASSERT_FALSE(shownTexts().isEmpty())
        << "its answer comes behind the click, which a shortcut may overtake";
    desktop.movePointer(line.center());
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    EXPECT_TRUE(DesktopSession::eventually([&] {
        return shownTexts().filter(sentence).size() == 2 && shownTexts().filter(translation).size() == 2;
    }));
}

/// Two displays, the second one left of the primary one.
TEST_F(OCRDesktop, EveryDisplayHasItsOverlay)
{
    const auto monitor = [this](const QString &name, const QString &geometry, const QString &output) {
        QProcess *xrandr =
            desktop.start(QStringLiteral("xrandr"), {QStringLiteral("--setmonitor"), name, geometry, output});
        return xrandr && xrandr->waitForFinished();
    };
    ASSERT_TRUE(
        monitor(QStringLiteral("LEFT"), QStringLiteral("640/170x900/240+0+0"), QStringLiteral("none")));
    ASSERT_TRUE(
        monitor(QStringLiteral("*RIGHT"), QStringLiteral("640/170x900/240+640+0"), QStringLiteral("screen")));
    start();
    desktop.pressKeyTimed(XK_s, XK_Alt_L);
    ASSERT_TRUE(overlayComes());
    // Each has its hint in its middle.
    for (const int left : {100, 740}) {
        EXPECT_TRUE(DesktopSession::eventually([&] {
            return brightest(desktop.screenshot().copy(left, 440, 440, 20)) > 230;
        })) << left;
    }
    desktop.drag(line.topLeft(), line.bottomRight());
    EXPECT_TRUE(says(sentence) && says(translation));
}

} // namespace
} // namespace tovi
