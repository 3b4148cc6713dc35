// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/X11/ScreenGeometry.h"

namespace tovi {
namespace {

// A primary screen of scale 2 in the middle, one of scale 1 left of it and lower, one of 1.5 above.
// Device pixels: primary 2560×1440 at (1920, 1000), left 1920×1080 at (0, 1200), above 1500×900 at (1920,
// 100).
const QList<ScreenGeometry::Display> displays{{QRect(1920, 1000, 1280, 720), 2.0},
                                              {QRect(0, 1200, 1920, 1080), 1.0},
                                              {QRect(1920, 100, 1000, 600), 1.5}};

TEST(ScreenGeometry, ConvertsEachScreenWithItsOwnScale)
{
    const ScreenGeometry geometry(displays);
    ASSERT_EQ(geometry.screens().size(), 3);
    EXPECT_EQ(geometry.screens()[0].frame, QRectF(0, 0, 1280, 720));
    EXPECT_EQ(geometry.screens()[1].frame, QRectF(-1920, -560, 1920, 1080));
    EXPECT_EQ(geometry.screens()[2].frame, QRectF(0, 1020, 1000, 600));
    EXPECT_EQ(geometry.screens()[2].backingScaleFactor, 1.5);

    const struct
    {
        QPointF native, program;
    } points[] = {{{1920, 1000}, {0, 720}},
                  {{1922, 1004}, {1, 718}},
                  {{1920 + 2558, 1000 + 1438}, {1279, 1}},
                  {{10, 1210}, {-1910, 510}},
                  {{1920 + 150, 100 + 150}, {100, 1520}}};
    for (const auto &[native, program] : points) {
        EXPECT_EQ(geometry.fromNative(native), program);
        EXPECT_EQ(geometry.toNative(program), native);
    }
    const QRectF selection(2020, 1100, 400, 40); // device pixels
    EXPECT_EQ(geometry.fromNative(selection), QRectF(50, 650, 200, 20));
    EXPECT_EQ(geometry.toNative(QRectF(50, 650, 200, 20)), selection);
    EXPECT_EQ(geometry.toQt({50, 650, 200, 20}), QRect(1970, 1050, 200, 20));
    EXPECT_EQ(geometry.fromQt(QRectF(1970, 1050, 200, 20)), QRectF(50, 650, 200, 20));
    EXPECT_EQ(geometry.screenAt({5000, 300})->displayNumber, 1u) << "outside: the nearest screen";
    EXPECT_EQ(geometry.screenAt({-5, 300})->displayNumber, 2u);
}

TEST(ScreenGeometry, AResizedWindowKeepsItsTopEdge)
{
    const ScreenGeometry geometry({{QRect(0, 0, 1600, 900), 1.0}});
    QRectF frame = geometry.fromQt(QRectF(geometry.toQt({10.4, 300.3, 300, 280})));
    const int top = geometry.toQt(frame).top();
    for (const double height : {281.5, 300.49, 479.7, 280.1}) {
        frame = {frame.x(), frame.y() - (height - frame.height()), frame.width(), height};
        EXPECT_EQ(geometry.toQt(frame).top(), top);
        frame = geometry.fromQt(QRectF(geometry.toQt(frame)));
    }
    // Nothing that a settings file holds may leave the wire's range.
    const QRect huge = geometry.toQt({1e300, -1e300, 1e300, -5});
    EXPECT_TRUE(QRect(-32768, -32768, 65536, 65536).contains(huge.topLeft()));
    EXPECT_GE(huge.height(), 1);
}

TEST(ScreenGeometry, StrutsReduceOnlyTheScreensTheyLieOn)
{
    using Edge = Strut::Edge;
    const QSize desktop(4480, 2440);
    const auto visible = [&](const QList<Strut> &struts, int screen) {
        return ScreenGeometry(displays, struts, desktop).screens()[screen].visibleFrame;
    };
    // A panel 60 pixels high under the primary screen, which is the lowest.
    const QList<Strut> bottom{{Edge::Bottom, 60, 1920, 4479}};
    EXPECT_EQ(visible(bottom, 0), QRectF(0, 30, 1280, 690));
    EXPECT_EQ(visible(bottom, 1), QRectF(-1920, -560, 1920, 1080));
    // A panel on the left edge of the primary screen, counted from the left edge of the desktop.
    const QList<Strut> middle{{Edge::Left, 1920 + 80, 1000, 2439}};
    EXPECT_EQ(visible(middle, 0), QRectF(40, 0, 1240, 720));
    EXPECT_EQ(visible(middle, 1), QRectF(-1920, -560, 1920, 1080)) << "a whole screen was given away";
    // Along the whole top edge of the desktop: the upper screen's.
    const QList<Strut> top{{Edge::Top, 130, 0, 65535}};
    EXPECT_EQ(visible(top, 2), QRectF(0, 1020, 1000, 580));
    EXPECT_EQ(visible(top, 0), QRectF(0, 0, 1280, 720));
}

TEST(ScreenGeometry, WithoutScreensItAnswersNothing)
{
    const ScreenGeometry none;
    EXPECT_FALSE(none.screenAt({1, 2}));
    EXPECT_EQ(none.fromNative(QPointF(1, 2)), QPointF(1, 2));
    EXPECT_EQ(none.toQt({1, 2, 3, 4}).size(), QSize(3, 4));
}

} // namespace
} // namespace tovi
