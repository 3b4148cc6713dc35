// SPDX-License-Identifier: MIT
#include "Capture/CaptureManager.h"

#include <semaphore>

#include <gtest/gtest.h>

#include "Settings.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

class CaptureManagerTest : public testing::Test
{
protected:
    using Future = QFuture<std::optional<CaptureResult>>;

    static Future start(bool preferOCR = false, std::optional<QPointF> at = {})
    {
        return spawnOnMain([=] { return CaptureManager::shared().capture(preferOCR, at, {}); });
    }
    static std::optional<CaptureResult> finished(const Future &future)
    {
        return waitUntil([&] { return future.isFinished(); }) ? future.result() : std::nullopt;
    }
    static std::shared_ptr<TestElement> holding(const QString &text)
    {
        const auto element = std::make_shared<TestElement>();
        element->attributes[QStringLiteral("AXSelectedText")] = {AXError::None, text};
        return element;
    }
    void focus(const std::shared_ptr<TestElement> &element)
    {
        systemWide.attributes[QStringLiteral("AXFocusedUIElement")] = {AXError::None, AXElement(element)};
    }

    TestPlatform platform;
    TestElement &systemWide = *platform.accessibility().systemWide;
};

TEST_F(CaptureManagerTest, TheFocusedElementComesBeforeTheOneUnderThePointer)
{
    const auto focused = holding(QStringLiteral(" focused "));
    focused->attributes[QStringLiteral("AXSelectedTextRange")] = {AXError::None, AXRange{0, 1}};
    focused->parameterized[QStringLiteral("AXBoundsForRange")] = [this](const AXValue &) {
        platform.clock().wait(std::chrono::milliseconds(200));
        return AXResult{AXError::None, QRectF(5, 100, 50, 20)};
    };
    focus(focused);
    systemWide.atPosition = {AXError::None, AXElement(holding(QStringLiteral("pointed")))};
    platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};
    EXPECT_EQ(finished(start()), (CaptureResult{QStringLiteral(" focused "), CaptureSource::accessibility,
                                                QRectF(5, 780, 50, 20), QStringLiteral("Editor"), 0.2}));

    focus(holding(QStringLiteral(" \n")));
    platform.workspace().frontmost->localizedName.clear();
    EXPECT_EQ(finished(start()),
              (CaptureResult{QStringLiteral("pointed"), CaptureSource::accessibility, {}, {}, 0}));
}

TEST_F(CaptureManagerTest, LooksWhereThePointerIsUnlessTold)
{
    auto &workspace = platform.workspace();
    workspace.screenList << Screen{QRectF(0, 900, 800, 600), QRectF(0, 900, 800, 600), 1.0, 2};
    EXPECT_FALSE(finished(start()));
    EXPECT_FALSE(finished(start(false, QPointF(30, 1200))));
    workspace.screenList.clear();
    EXPECT_FALSE(finished(start()));
    workspace.mouse.reset();
    EXPECT_FALSE(finished(start()));
    EXPECT_EQ(systemWide.positions, (QList<QPointF>{{700, 450}, {30, -300}, {700, -450}}));

    systemWide.requests.clear();
    EXPECT_FALSE(finished(start(true)));
    EXPECT_TRUE(systemWide.requests.isEmpty()); // recognition first asks no application
}

TEST_F(CaptureManagerTest, TheClipboardIsTheUsersUnlessItMayBeUsed)
{
    platform.workspace().frontmost = RunningApplication{{}, {}, 1};
    platform.keyboard().onPost = [this] { platform.pasteboard().put(QStringLiteral("copied")); };
    for (const bool isAllowed : {false, true}) {
        Settings::shared().clipboardFallback = isAllowed;
        EXPECT_EQ(finished(start()).has_value(), isAllowed);
        EXPECT_EQ(platform.pasteboard().changeCount() > 0, isAllowed);
        EXPECT_EQ(platform.keyboard().posted.size(), isAllowed ? 1 : 0);
    }
}

TEST_F(CaptureManagerTest, AHangingApplicationHoldsUpTheNextCaptureButNotTheMainThread)
{
    std::binary_semaphore answering{0};
    std::atomic<int> asked = 0;
    const auto hanging = holding(QStringLiteral("late"));
    hanging->onRequest = [&](const QString &name) {
        if (name == QLatin1String("AXSelectedText") && ++asked == 1)
            answering.acquire();
    };
    focus(hanging);
    const Future first = start();
    ASSERT_TRUE(waitUntil([&] { return asked == 1; }));
    const Future second = start();
    bool delivered = false;
    platform.clock().afterDetached(std::chrono::seconds(4), [&] { delivered = true; });
    platform.clock().advance(std::chrono::seconds(4));
    EXPECT_TRUE(delivered);
    EXPECT_FALSE(first.isFinished() || second.isFinished());
    EXPECT_EQ(asked, 1);

    answering.release();
    ASSERT_TRUE(finished(first) && finished(second));
    EXPECT_EQ(first.result()->duration, 4);
    EXPECT_EQ(asked, 2);
}

} // namespace
} // namespace tovi
