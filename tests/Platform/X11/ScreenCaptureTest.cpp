// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QPainter>
#include <QWidget>
#include <QWindow>

#include <xcb/shape.h>

#include "Platform/X11/LiveDesktop.h"
#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/X11PanelHost.h"
#include "Platform/X11/X11ScreenCapture.h"
#include "Platform/X11/X11Workspace.h"
#include "Support/Await.h"

namespace tovi {
namespace {

/// A window of another program: of one colour, which stays when nobody paints any more.
class Stranger
{
public:
    Stranger(const QRect &rect, quint32 color)
        : id(xcb_generate_id(m_session.connection()))
    {
        const quint32 values[] = {color, 1};
        xcb_create_window(m_session.connection(), XCB_COPY_FROM_PARENT, id, m_session.root(),
                          int16_t(rect.x()), int16_t(rect.y()), uint16_t(rect.width()),
                          uint16_t(rect.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    }
    /// Below all other windows.
    void show()
    {
        const quint32 below = XCB_STACK_MODE_BELOW;
        xcb_map_window(m_session.connection(), id);
        xcb_configure_window(m_session.connection(), id, XCB_CONFIG_WINDOW_STACK_MODE, &below);
        m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session.connection()));
    }
    xcb_connection_t *connection() { return m_session.connection(); }

private:
    XcbSession m_session;

public:
    const xcb_window_t id;
};

class ScreenCaptureTest : public testing::Test
{
protected:
    QImage take(const QRectF &source, const ContentFilter &filter)
    {
        const double scale = workspace.screens().first().backingScaleFactor;
        return await(
            capture.captureImage(filter, {.sourceRect = source, .size = (source.size() * scale).toSize()}));
    }
    TestClock clock;
    X11Workspace workspace;
    X11ScreenCapture capture;
    X11PanelHost host{workspace.frontWindow(), clock, capture};
};

TEST_F(ScreenCaptureTest, LeavesOurWindowsOutAndShowsWhatIsBelow)
{
    ASSERT_TRUE(capture.preflightAccess());
    const double scale = workspace.screens().first().backingScaleFactor;
    const double height = workspace.screens().first().frame.height();
    Stranger low({100, 100, 400, 300}, 0x3060a0);
    // A hole in the upper one shows the lower one.
    Stranger high({200, 150, 200, 100}, 0x20c040);
    const xcb_rectangle_t parts[] = {{0, 0, 200, 40}, {0, 60, 200, 40}};
    xcb_shape_rectangles(high.connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, high.id, 0, 0, 2, parts);
    high.show();
    low.show();
    const qint64 own = QCoreApplication::applicationPid();
    EXPECT_TRUE(await(capture.shareableContent()).applications.contains(own)) << "no window of ours is up";
    auto content = std::make_unique<QWidget>();
    auto panel = host.makePanel(std::move(content));
    panel->setFrame(QRectF(120 / scale, height - 380 / scale, 350 / scale, 250 / scale));
    panel->orderFrontRegardless();
    xcb_flush(QtXcb::connection());
    ASSERT_TRUE(waitUntil([&] {
        const ShareableContent shown = await(capture.shareableContent());
        return std::ranges::count(shown.windows, own, &ShareableContent::Window::processIdentifier) > 0;
    }));
    const ContentFilter withoutUs{.display = 1, .excludedApplication = own};

    const auto pixel = [&](const QImage &image, QPoint native) {
        return image.pixel(native - QPoint(50, 50)) & 0xffffff;
    };
    const QRectF source(50 / scale, 50 / scale, 500 / scale, 400 / scale);
    const QImage image = take(source, withoutUs);
    ASSERT_EQ(image.size(), QSize(500, 400));
    EXPECT_EQ(pixel(image, {110, 110}), 0x3060a0u);
    EXPECT_EQ(pixel(image, {300, 160}), 0x20c040u);
    EXPECT_EQ(pixel(image, {300, 200}), 0x3060a0u); // the hole
    EXPECT_EQ(pixel(image, {300, 240}), 0x20c040u);
    EXPECT_EQ(pixel(image, {450, 350}), 0x3060a0u);
    // With the panel the picture is another one: it was there all the time.
    EXPECT_TRUE(waitUntil([&] { return pixel(take(source, {.display = 1}), {300, 330}) != 0x3060a0u; }));
    EXPECT_EQ(pixel(take(source, {.display = 1, .excludedWindows = {low.id}}), {110, 110}), 0u);

    EXPECT_THROW(take(source, {.display = 9}), ScreenCaptureError);
}

TEST_F(ScreenCaptureTest, AnOverlayTakesTheKeyboardAndGivesItBack)
{
    OtherClient user;
    const xcb_window_t focus = user.focus();
    struct View : QWidget
    {
        void keyPressEvent(QKeyEvent *) override { ++keys; }
        void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(QRect(0, 0, 10, 10), Qt::red); }
        int keys = 0;
    };
    auto content = std::make_unique<View>();
    View *view = content.get();
    view->setFocusPolicy(Qt::StrongFocus);
    Stranger below({100, 100, 400, 300}, 0x3060a0);
    below.show();
    auto overlay = host.makeOverlay(std::move(content));
    const QRectF frame = workspace.screens().first().frame;
    overlay->setFrame(frame);
    EXPECT_EQ(overlay->frame(), frame);
    overlay->orderFrontRegardless();
    overlay->makeKey();
    ASSERT_TRUE(waitUntil([&] { return view->window()->windowHandle()->isExposed(); }));
    EXPECT_EQ(view->size(), frame.size().toSize());
    // The server has no compositor, so the overlay shows what was below it.
    const auto ours = [&](QPoint native) {
        const double scale = workspace.screens().first().backingScaleFactor;
        return take({0, 0, 300 / scale, 300 / scale}, {.display = 1}).pixel(native) & 0xffffff;
    };
    EXPECT_TRUE(waitUntil([&] { return ours({5, 5}) == 0xff0000u && ours({250, 250}) == 0x3060a0u; }));

    constexpr uint8_t keyA = 38;
    user.press({keyA});
    EXPECT_TRUE(waitUntil([&] { return view->keys == 1; }));
    EXPECT_EQ(user.focus(), focus);
    EXPECT_FALSE(user.takeKeyboard());
    overlay.reset();
    EXPECT_TRUE(waitUntil([&] { return user.takeKeyboard(); }));
}

} // namespace
} // namespace tovi
