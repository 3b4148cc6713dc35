// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QMouseEvent>
#include <gtest/gtest.h>

#include "Localization.h"
#include "Support/TestPlatform.h"
#include "UI/ScreenSelectionController.h"
#include "UI/SelectionView.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

class ScreenSelectionTest : public testing::Test
{
protected:
    using Answers = QList<std::optional<QRectF>>;

    ScreenSelectionTest()
    {
        platform.workspace().screenList
            << Screen{QRectF(-1000, 100, 1000, 700), QRectF(-1000, 100, 1000, 700), 1.0, 2};
    }
    void begin()
    {
        ScreenSelectionController::shared().begin([this](const auto &rect) { answers << rect; });
        for (auto *overlay : platform.panelHost().open)
            overlay->content->setFixedSize(overlay->frame().size().toSize());
    }
    SelectionView *view(qsizetype display)
    {
        return static_cast<SelectionView *>(platform.panelHost().open.at(display)->content.get());
    }
    /// Points of the view from its top-left corner, as the toolkit counts.
    static void mouse(QWidget *view, QEvent::Type type, QPointF point,
                      Qt::MouseButton button = Qt::LeftButton)
    {
        const bool isMove = type == QEvent::MouseMove;
        QMouseEvent event(type, point, point, isMove ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, {});
        QApplication::sendEvent(view, &event);
    }
    static void drag(QWidget *view, QPointF from, QPointF to)
    {
        mouse(view, QEvent::MouseButtonPress, from);
        mouse(view, QEvent::MouseMove, (from + to) / 2);
        mouse(view, QEvent::MouseButtonRelease, to);
    }
    bool isOver() { return platform.panelHost().open.isEmpty() && !QGuiApplication::overrideCursor(); }

    TestPlatform platform;
    Answers answers;
};

TEST_F(ScreenSelectionTest, AnswersADragInScreenCoordinates)
{
    const struct
    {
        qsizetype display;
        QPointF from, to;
        QRectF rect;
    } cases[] = {
        {0, {100, 50}, {400, 250}, {100, 650, 300, 200}},
        {0, {400, 250}, {100, 50}, {100, 650, 300, 200}},
        {1, {10, 600}, {18, 608}, {-990, 192, 8, 8}},
        // From the first to the last pixel, and from the last one back.
        {1, {0, 0}, {999, 699}, {-1000, 100, 1000, 700}},
        {0, {1439, 899}, {1000, 500}, {1000, 0, 440, 400}},
        // Too small: an area around the point where the button went up, cut off at the display's edge.
        {0, {700, 300}, {707, 500}, {527, 330, 360, 140}},
        {1, {990, 10}, {990, 10}, {-190, 720, 190, 80}},
    };
    for (const auto &c : cases) {
        answers.clear();
        begin();
        ASSERT_EQ(platform.panelHost().open.size(), 2);
        EXPECT_TRUE(platform.panelHost().open.first()->key);
        drag(view(c.display), c.from, c.to);
        EXPECT_TRUE(isOver());
        platform.clock().advance(79ms);
        EXPECT_TRUE(answers.isEmpty());
        platform.clock().advance(1ms);
        EXPECT_EQ(answers, Answers{c.rect});
    }
}

TEST_F(ScreenSelectionTest, IsCancelledOnce)
{
    begin();
    const auto escape = platform.eventMonitors().localHandler;
    EXPECT_FALSE(escape({36, 0}));
    EXPECT_TRUE(escape({53, 0}));
    EXPECT_TRUE(isOver());
    EXPECT_TRUE(escape({53, 0}));
    platform.clock().advance(1s);
    EXPECT_EQ(answers, Answers{std::nullopt});

    begin();
    mouse(view(1), QEvent::MouseButtonPress, {5, 5}, Qt::RightButton);
    EXPECT_TRUE(isOver());
    platform.clock().advance(1s);
    EXPECT_EQ(answers.size(), 2);

    // Starting over says nothing about the one before.
    begin();
    begin();
    EXPECT_EQ(platform.panelHost().open.size(), 2);
    drag(view(0), {0, 0}, {50, 50});
    platform.clock().advance(1s);
    EXPECT_EQ(answers.size(), 3);

    // Displays that change meanwhile are covered anew, as long as there are any.
    begin();
    for (const qsizetype left : {1, 0}) {
        platform.workspace().screenList.resize(left);
        Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
        drainMainQueue();
        EXPECT_EQ(platform.panelHost().open.size(), left);
        platform.clock().advance(1s);
        EXPECT_EQ(answers.size(), left ? 3 : 4);
    }
    begin();
    platform.clock().advance(1s);
    EXPECT_TRUE(isOver());
    EXPECT_EQ(answers.size(), 4);
}

/// How much of the light below comes through, 0 to 255, at a point from the top-left corner.
int light(QWidget *view, QPoint point)
{
    QImage image(view->size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    view->render(&image, {}, {}, QWidget::DrawChildren);
    return qGray(image.pixel(point));
}

TEST_F(ScreenSelectionTest, DimsAllButTheSelection)
{
    constexpr int dimmed = 173;
    begin();
    auto *selection = view(0);
    EXPECT_NEAR(light(selection, {5, 5}), dimmed, 1);
    EXPECT_LT(light(selection, {720 - 170, 450}), 80); // the hint's ground, in the middle
    mouse(selection, QEvent::MouseButtonPress, {100, 20});
    EXPECT_NEAR(light(selection, {100, 20}), dimmed, 1);
    mouse(selection, QEvent::MouseMove, {400, 220});
    EXPECT_EQ(selection->selectionRect(), QRectF(100, 680, 300, 200));
    EXPECT_EQ(light(selection, {250, 120}), 255);
    for (const QPoint outside :
         {QPoint(250, 10), QPoint(250, 300), QPoint(50, 120), QPoint(450, 120), QPoint(720 - 170, 450)})
        EXPECT_NEAR(light(selection, outside), dimmed, 1);
    EXPECT_NE(light(selection, {100, 120}), 255); // the outline
    // No room above: the label is below.
    EXPECT_LT(light(selection, {103, 228}), 90);
    mouse(selection, QEvent::MouseButtonPress, {100, 420});
    mouse(selection, QEvent::MouseMove, {400, 500});
    EXPECT_LT(light(selection, {103, 411}), 90);
}

} // namespace
} // namespace tovi
