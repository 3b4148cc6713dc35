// SPDX-License-Identifier: MIT
#include "Capture/OCRCapturer.h"

#include <limits>

#include <QCoreApplication>
#include <gtest/gtest.h>

#include "Capture/OCRCaptureGeometry.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using Kind = OCRResult::Kind;

const Screen mainScreen{QRectF(0, 0, 1440, 900), QRectF(0, 0, 1440, 870), 1.0, 1};
const Screen leftScreen{QRectF(-1000, 100, 1000, 700), QRectF(-1000, 100, 1000, 700), 1.5, 2};

TEST(OCRCaptureGeometryTest, PicksTheDisplayWithMostOfTheRectangle)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct
    {
        QRectF rect;
        std::optional<qsizetype> index;
    } cases[] = {
        {{-10, 200, 30, 30}, 0}, {{-20, 200, 30, 30}, 1},      {{-15, 200, 30, 30}, 0}, // equal parts
        {{-50, 20, 40, 40}, {}}, {{-50, 800, 40, 40}, {}}, // touches with its edge
        {{10, 10, 0, 40}, {}},   {{10, 10, infinity, 40}, {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(OCRCaptureGeometry::screenIndex(c.rect, {mainScreen.frame, leftScreen.frame}), c.index)
            << c.rect.x();
    EXPECT_EQ(OCRCaptureGeometry::screenIndex({0, 0, 1, 1}, {}), std::nullopt);

    EXPECT_EQ(OCRCaptureGeometry::localRect({-1010, 750, 60, 100}, leftScreen.frame), QRectF(0, 0, 50, 50));
    EXPECT_EQ(OCRCaptureGeometry::localRect({100, 100, 60, 1}, mainScreen.frame), std::nullopt);
    EXPECT_EQ(OCRCaptureGeometry::localRect({1439, 100, 60, 60}, mainScreen.frame), std::nullopt);
}

class OCRCapturerTest : public testing::Test
{
protected:
    OCRCapturerTest()
    {
        platform.workspace().screenList = {mainScreen, leftScreen};
        capture.content.displays = {1, 2};
    }
    OCRResult read(QRectF rect, std::stop_token stop = {})
    {
        progress.clear();
        platform.systemLog().lines.clear();
        const auto onProgress = [this](OCRProgress stage) { progress << stage; };
        return await(OCRCapturer::recognizeText(rect, onProgress, stop));
    }

    TestPlatform platform;
    TestScreenCapture &capture = platform.screenCapture();
    TestTextRecognizer &recognizer = platform.textRecognizer();
    QList<OCRProgress> progress;
};

TEST_F(OCRCapturerTest, ReadsTheLinesOfTheDisplaysPart)
{
    recognizer.setTexts({QStringLiteral(" one"), QStringLiteral("two"), QStringLiteral("three\u3000")});
    const OCRResult result = read({-1010, 750.2, 60, 100});
    EXPECT_EQ(result.kind, Kind::text);
    EXPECT_EQ(result.text, QStringLiteral("one\ntwo\nthree"));
    EXPECT_EQ(progress, (QList{OCRProgress::capturing, OCRProgress::recognizing}));
    EXPECT_EQ(platform.systemLog().lines.size(), 4);
    EXPECT_FALSE(platform.systemLog().lines.join(u' ').contains(QStringLiteral("two"))) << "no user's text";
    ASSERT_EQ(capture.configurations.size(), 1);
    EXPECT_EQ(capture.filters.first().display, 2u);
    EXPECT_EQ(recognizer.requests.first().languages.join(QLatin1Char(' ')),
              QStringLiteral("zh-Hans zh-Hant en-US ja-JP ko-KR"));
    EXPECT_EQ(recognizer.requests.first().image.size(), QSize(75, 75));
}

TEST_F(OCRCapturerTest, LeavesOutThisProgram)
{
    const qint64 own = QCoreApplication::applicationPid();
    capture.content.windows = {{11, own}, {12, own + 1}, {13, own}};
    read({0, 0, 60, 100});
    EXPECT_EQ(capture.filters.last().excludedApplication, std::nullopt);
    EXPECT_EQ(capture.filters.last().excludedWindows, (QList<quint32>{11, 13}));
    capture.content.applications = {own + 1, own};
    read({0, 0, 60, 100});
    EXPECT_EQ(capture.filters.last().excludedApplication, own);
    EXPECT_TRUE(capture.filters.last().excludedWindows.isEmpty());
}

TEST_F(OCRCapturerTest, TellsNothingToReadFromNothingToSee)
{
    EXPECT_EQ(read({0, 0, 60, 100}).kind, Kind::noText);
    recognizer.error.emplace(QStringLiteral("broken"), TextRecognitionError::Reason::Failed);
    EXPECT_EQ(read({0, 0, 60, 100}).kind, Kind::noText);
    EXPECT_EQ(platform.systemLog().lines.last(), QStringLiteral("Tovi OCR recognition failed: broken"));
    capture.allowed = false;
    EXPECT_EQ(read({0, 0, 60, 100}).kind, Kind::permissionDenied);

    const auto pictures = capture.configurations.size();
    for (const QRectF rect : {QRectF(0, 0, 60, 1), QRectF(5000, 0, 60, 60)}) {
        EXPECT_EQ(read(rect).kind, Kind::permissionDenied);
    }
    capture.content.displays = {1};
    EXPECT_EQ(read({-500, 300, 60, 100}).kind, Kind::permissionDenied);
    EXPECT_EQ(capture.configurations.size(), pictures);
    EXPECT_EQ(progress, QList{OCRProgress::capturing});
    capture.error.emplace(QStringLiteral("gone"));
    EXPECT_EQ(read({0, 0, 60, 100}).kind, Kind::permissionDenied);
}

} // namespace
} // namespace tovi
