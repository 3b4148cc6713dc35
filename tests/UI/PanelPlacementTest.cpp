// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "UI/PanelPlacement.h"

namespace tovi::PanelPlacement {
namespace {

const Screen primary{QRectF(0, 0, 1440, 900), QRectF(0, 40, 1440, 830), 1.0, 1};
const Screen above{QRectF(200, 900, 1000, 600), QRectF(200, 900, 1000, 600), 1.0, 2};

TEST(PanelPlacement, GoesBelowTheAnchorOrAboveItInsideTheVisibleFrame)
{
    struct Case
    {
        QRectF anchor;
        QPointF origin;
    };
    const QSizeF size(380, 280);
    const Case cases[] = {
        {QRectF(100, 600, 50, 20), QPointF(100, 600 - 288)},         // below
        {QRectF(100, 100, 50, 20), QPointF(100, 128)},               // no room below
        {QRectF(1400, 600, 50, 20), QPointF(1440 - 388, 600 - 288)}, // right edge
        {QRectF(-50, 600, 50, 20), QPointF(8, 600 - 288)},           // left edge
        {QRectF(100, 330, 50, 530), QPointF(100, 870 - 288)},        // nowhere: kept inside at the top
    };
    for (const Case &c : cases)
        EXPECT_EQ(originNear(c.anchor, size, primary.visibleFrame), c.origin) << c.anchor.x();
}

TEST(PanelPlacement, SizesStayInTheirLimits)
{
    EXPECT_EQ(panelWidth(-5), 300);
    EXPECT_EQ(panelWidth(1e9), 640);
    EXPECT_EQ(panelHeight(10, primary), 280);
    EXPECT_EQ(panelHeight(1e9, std::nullopt), 480);
    const Screen low{QRectF(0, 0, 800, 300), QRectF(0, 0, 800, 300), 1.0, 3};
    EXPECT_EQ(panelHeight(10, low), 210) << "lower than any panel is elsewhere";
}

TEST(PanelPlacement, FindsTheScreenOfAPoint)
{
    const QList<Screen> screens{primary, above};
    EXPECT_EQ(visibleFrame({500, 950}, screens, primary), above.visibleFrame);
    EXPECT_EQ(visibleFrame({500, 899}, screens, primary), primary.visibleFrame);
    EXPECT_EQ(visibleFrame({-500, 0}, screens, above), above.visibleFrame);
    EXPECT_EQ(visibleFrame({0, 0}, {}, std::nullopt), QRectF(0, 0, 1440, 900));
}

TEST(PanelPlacement, APanelLargerThanTheScreenSticksToTheLowerLeftMargin)
{
    EXPECT_EQ(clampedOrigin(QRectF(500, 500, 2000, 2000), primary.visibleFrame), QPointF(8, 48));
    EXPECT_EQ(clampedOrigin(QRectF(1300, 900, 380, 280), primary.visibleFrame),
              QPointF(1440 - 388, 870 - 288));
}

} // namespace
} // namespace tovi::PanelPlacement
