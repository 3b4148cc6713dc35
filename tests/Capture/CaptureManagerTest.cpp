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
        element->attributes = {{QStringLiteral("AXSelectedText"), {AXError::None, text}},
                               {QStringLiteral("AXSelectedTextRange"), {AXError::None, AXRange{0, 1}}}};
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
    focused->parameterized[QStringLiteral("AXBoundsForRange")] = [](const AXValue &) {
        return AXResult{AXError::None, QRectF(5, 100, 50, 20)};
    };
    focused->onRequest = [this](const QString &) { platform.clock().wait(std::chrono::milliseconds(100)); };
    focus(focused);
    systemWide.atPosition = {AXError::None, AXElement(holding(QStringLiteral("pointed")))};
    platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};

    auto result = finished(start());
    ASSERT_TRUE(result);
    EXPECT_NEAR(result->duration, 0.2, 1e-9); // two attributes, each answered after 0.1 s
    result->duration = 0;
    EXPECT_EQ(*result, (CaptureResult{.text = QStringLiteral(" focused "),
                                      .source = CaptureSource::accessibility,
                                      .bounds = QRectF(5, 780, 50, 20),
                                      .appName = QStringLiteral("Editor")}));

    focus(holding(QStringLiteral(" \n")));
    platform.workspace().frontmost->localizedName.clear();
    result = finished(start());
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, (CaptureResult{.text = QStringLiteral("pointed"),
                                      .source = CaptureSource::accessibility,
                                      .duration = result->duration}));
}

TEST_F(CaptureManagerTest, LooksWhereThePointerIsUnlessTold)
{
    auto &workspace = platform.workspace();
    workspace.screenList << Screen{QRectF(0, 900, 800, 600), QRectF(0, 900, 800, 600), 1.0, 2};
    EXPECT_FALSE(finished(start()));
    EXPECT_FALSE(finished(start(false, QPointF(30, 1200))));
    workspace.screenList.clear();
    EXPECT_FALSE(finished(start()));
    EXPECT_EQ(systemWide.positions, (QList<QPointF>{{700, 450}, {30, -300}, {700, -450}}));

    workspace.mouse.reset();
    EXPECT_FALSE(finished(start()));
    EXPECT_EQ(systemWide.positions.size(), 3);
}

TEST_F(CaptureManagerTest, RecognitionFirstAsksNoApplication)
{
    focus(holding(QStringLiteral("selected")));
    EXPECT_FALSE(finished(start(true)));
    EXPECT_TRUE(systemWide.requests.isEmpty());
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
    EXPECT_GE(first.result()->duration, 4);
    EXPECT_EQ(asked, 2);
}

TEST_F(CaptureManagerTest, DescribesItsSource)
{
    CaptureResult result{.text = {}, .source = CaptureSource::ocr};
    EXPECT_EQ(result.sourceDescription(), QStringLiteral("OCR"));
    result.appName = QString();
    EXPECT_EQ(result.sourceDescription(), QStringLiteral("OCR"));
    result.appName = QStringLiteral("Editor");
    EXPECT_EQ(result.sourceDescription(), QStringLiteral("OCR · Editor"));

    QSet<QString> names;
    for (int i = 0; i <= static_cast<int>(CaptureSource::manual); ++i)
        names << localizedName(static_cast<CaptureSource>(i));
    EXPECT_EQ(names.size(), 7);
}

} // namespace
} // namespace tovi
