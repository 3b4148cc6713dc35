// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <gtest/gtest.h>

#include "AppDelegate.h"
#include "Localization.h"
#include "Localization/RecognitionTexts.h"
#include "Settings.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "Translation/Translator.h"
#include "UI/ResultPanelManager.h"
#include "UI/ResultViewModel.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

/// The coordinator from the OCR shortcut to the panel.
class OCRFlows : public testing::Test
{
protected:
    void SetUp() override
    {
        platform.translationFramework().onOpen = [this](auto &request) { request.handler(session); };
        session->answer = [](const QString &text) { return text.toUpper(); };
        for (const ProviderConfig &provider : Settings::shared().providers.get()) {
            if (provider.kind == ProviderKind::apple)
                Settings::shared().currentProviderID = provider.id;
        }
        platform.userDefaults().values[QStringLiteral("hasCompletedOnboarding")] = true;
        platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};
        delegate.applicationDidFinishLaunching();
        recognizer.holds = true;
        recognizer.setTexts({QStringLiteral("read")});
    }
    void TearDown() override
    {
        // No translation is left to end in the next test, whose platform is another one.
        await(Translator::shared().translate(QStringLiteral("last"), QStringLiteral("es"),
                                             QStringLiteral("auto"), std::nullopt, {}));
        drainMainQueue();
    }

    bool press(const HotKey &keys)
    {
        const bool isTaken = platform.hotKeyCenter().press(keys.keyCode, keys.modifiers);
        drainMainQueue();
        return isTaken;
    }
    bool pressOCR() { return press(Settings::shared().ocrHotKey); }
    /// Drags a region on the overlay, and lets its answer come.
    void drag()
    {
        QWidget *overlay = platform.panelHost().open.last()->content.get();
        overlay->setFixedSize(1440, 900);
        const auto mouse = [overlay](QEvent::Type type, QPointF point, Qt::MouseButtons buttons) {
            QMouseEvent event(type, point, point, Qt::LeftButton, buttons, {});
            QApplication::sendEvent(overlay, &event);
        };
        mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, {300, 200}, Qt::NoButton);
        platform.clock().advance(80ms);
    }
    bool isReading(qsizetype requests)
    {
        return waitUntil([&] { return recognizer.requests.size() == requests; });
    }
    void finishReading()
    {
        recognizer.finish();
        drainMainQueue();
    }
    TestPanelHost::TestPanel *panel()
    {
        return platform.panelHost().open.isEmpty() ? nullptr : platform.panelHost().open.last();
    }
    QStringList texts()
    {
        drainMainQueue();
        QStringList all;
        for (const auto *open : platform.panelHost().open) {
            for (const auto *label : open->content->findChildren<QLabel *>())
                all << (label->isHidden() ? QString() : label->text());
            for (const auto *edit : open->content->findChildren<QPlainTextEdit *>())
                all << edit->toPlainText();
            for (const auto *edit : open->content->findChildren<QTextEdit *>())
                all << edit->toPlainText();
        }
        return all;
    }
    bool shows(const QString &text)
    {
        return waitUntil([&] { return texts().contains(text); });
    }
    bool shows(Str key) { return shows(Localization::shared().t(key)); }

    TestPlatform platform;
    TestTextRecognizer &recognizer = platform.textRecognizer();
    std::shared_ptr<TestTranslationSession> session = std::make_shared<TestTranslationSession>();
    AppDelegate delegate;
};

TEST_F(OCRFlows, ARegionIsReadInItsPanelAndTranslatedThere)
{
    platform.screenCapture().allowed = false;
    ASSERT_TRUE(pressOCR());
    EXPECT_EQ(platform.screenCapture().requests, 1);
    drag();
    ASSERT_TRUE(isReading(1));
    EXPECT_TRUE(shows(Str::ocrRecognizing));
    EXPECT_EQ(platform.screenCapture().configurations.last().sourceRect, QRectF(100, 100, 200, 100));
    platform.clock().advance(10s);
    EXPECT_EQ(platform.application().beeps, 0); // nobody watches the time
    const auto *progress = panel();
    finishReading();
    EXPECT_TRUE(shows(QStringLiteral("read")) && shows(QStringLiteral("READ")));
    EXPECT_EQ(panel(), progress);
    EXPECT_EQ(platform.panelHost().open.size(), 1);
}

TEST_F(OCRFlows, SayWhyThereIsNoText)
{
    recognizer.setTexts({});
    for (const bool allowed : {true, false}) {
        platform.screenCapture().allowed = allowed;
        ASSERT_TRUE(pressOCR());
        drag();
        ASSERT_TRUE(isReading(allowed ? 1 : 2));
        finishReading();
        EXPECT_TRUE(shows(allowed ? Str::messageOCRNoText : Str::messageScreenPermission));
    }
    platform.screenCapture().allowed = true;
    recognizer.error =
        TextRecognitionError(QStringLiteral("none"), TextRecognitionError::Reason::NotInstalled);
    ASSERT_TRUE(pressOCR());
    drag();
    ASSERT_TRUE(isReading(3));
    finishReading();
    EXPECT_TRUE(shows(RecognitionTexts::notInstalled(AppLanguage::en)));
}

TEST_F(OCRFlows, ClosingTheProgressPanelAbandons)
{
    ASSERT_TRUE(pressOCR());
    drag();
    ASSERT_TRUE(isReading(1));
    panel()->onEscape();
    EXPECT_TRUE(recognizer.requests.last().stop.stop_requested());
    finishReading();
    EXPECT_TRUE(platform.panelHost().open.isEmpty());

    // A newer trigger does the same, and a late text goes nowhere.
    ASSERT_TRUE(pressOCR());
    drag();
    ASSERT_TRUE(isReading(2));
    ASSERT_TRUE(pressOCR());
    EXPECT_TRUE(recognizer.requests.last().stop.stop_requested());
    finishReading();
    EXPECT_FALSE(texts().contains(QStringLiteral("read")));
    drag();
    ASSERT_TRUE(isReading(3));
    finishReading();
    EXPECT_TRUE(shows(QStringLiteral("read")));
}

TEST_F(OCRFlows, TheLastResortMayTakeItsTime)
{
    Settings::shared().clipboardFallback = false;
    // The other strategies leave OCR just before the watchdog would give up.
    platform.accessibility().systemWide->onRequest = [this, waited = false](const QString &) mutable {
        if (!std::exchange(waited, true))
            platform.clock().wait(3900ms);
    };
    ASSERT_TRUE(press(Settings::shared().captureHotKey));
    ASSERT_TRUE(isReading(1));
    platform.clock().advance(10s);
    EXPECT_TRUE(shows(Str::ocrRecognizing));
    EXPECT_EQ(platform.application().beeps, 0);
    finishReading();
    EXPECT_TRUE(shows(QStringLiteral("READ")));
}

TEST_F(OCRFlows, TheAreaAroundThePointerNeedsNoOverlay)
{
    Settings::shared().ocrRegionSelection = false;
    Settings::shared().ocrEnabled = false;
    platform.workspace().mouse = QPointF(700, 10);
    ASSERT_TRUE(pressOCR());
    ASSERT_TRUE(isReading(1));
    EXPECT_EQ(platform.screenCapture().configurations.last().sourceRect, QRectF(340, 760, 720, 140));
    finishReading();
    EXPECT_TRUE(shows(QStringLiteral("READ")));

    // Another flow ends a selection, whose panel would come under the overlay.
    Settings::shared().ocrRegionSelection = true;
    ASSERT_TRUE(pressOCR());
    ASSERT_TRUE(press(Settings::shared().inputHotKey));
    drainMainQueue();
    EXPECT_EQ(platform.panelHost().open.size(), 1);
}

} // namespace
} // namespace tovi
