// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QPlainTextEdit>
#include <QSemaphore>
#include <QTextEdit>
#include <gtest/gtest.h>

#include "AppDelegate.h"
#include "HotKeyStatus.h"
#include "Localization.h"
#include "Platform/PasteboardQueue.h"
#include "Settings.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "Translation/Translator.h"
#include "UI/OnboardingWindowController.h"
#include "UI/SettingsWindowController.h"

namespace tovi {
namespace {

using Slot = HotKeyStatus::Slot;
using namespace std::chrono_literals;

constexpr HotKey optionD{2, HotKey::option};
constexpr HotKey optionS{1, HotKey::option};
constexpr HotKey optionT{17, HotKey::option};

class AppDelegateTest : public testing::Test
{
protected:
    void SetUp() override
    {
        platform.userDefaults().values[QStringLiteral("ocrEnabled")] = false;
        platform.userDefaults().values[QStringLiteral("hasCompletedOnboarding")] = true;
        session->answer = [this](const QString &text) {
            translated << text;
            return text.toUpper();
        };
        platform.translationFramework().onOpen = [this](auto &request) { request.handler(session); };
        QList<ProviderConfig> providers = Settings::shared().providers;
        for (ProviderConfig &provider : providers) {
            provider.fallbackToGoogle = false;
            if (provider.kind == ProviderKind::apple)
                Settings::shared().currentProviderID = provider.id;
        }
        Settings::shared().providers = providers;
        platform.clock().advance(1s); // past the engine list's delayed save
        delegate.applicationDidFinishLaunching();
    }

    void TearDown() override
    {
        // No translation is left to end in the next test, whose platform is another one.
        session->answer = [](const QString &text) { return text.toUpper(); };
        await(Translator::shared().translate(QStringLiteral("last"), QStringLiteral("es"),
                                             QStringLiteral("auto"), std::nullopt, {}));
        drainMainQueue();
    }

    std::shared_ptr<TestElement> select(const QString &text)
    {
        auto element = std::make_shared<TestElement>();
        element->attributes[QStringLiteral("AXSelectedText")] = {AXError::None, text};
        platform.accessibility().systemWide->attributes[QStringLiteral("AXFocusedUIElement")] = {
            AXError::None, AXElement(element)};
        return element;
    }
    /// An application that does not answer until it is told to.
    void selectInHangingApplication(const QString &text)
    {
        select(text)->onRequest = [this](const QString &) {
            asked.release();
            answer.acquire();
        };
    }
    bool press(const HotKey &keys) { return platform.hotKeyCenter().press(keys.keyCode, keys.modifiers); }

    struct Shown
    {
        QString source;
        QString result;
        bool operator==(const Shown &) const = default;
    };
    QList<Shown> shown()
    {
        drainMainQueue();
        QList<Shown> texts;
        for (const auto *panel : platform.panelHost().open) {
            if (panel->visible)
                texts.append({panel->content->findChild<QPlainTextEdit *>()->toPlainText(),
                              panel->content->findChild<QTextEdit *>()->toPlainText()});
        }
        return texts;
    }
    bool showsSource(const QString &text)
    {
        return waitUntil([&] { return !shown().isEmpty() && shown().first().source == text; });
    }
    bool showsResult(const QString &text)
    {
        return waitUntil([&] { return !shown().isEmpty() && shown().first().result == text; });
    }

    QSemaphore asked, answer;
    QStringList translated;
    TestPlatform platform;
    std::shared_ptr<TestTranslationSession> session = std::make_shared<TestTranslationSession>();
    AppDelegate delegate;
};

TEST_F(AppDelegateTest, OpensTheWindowsThatALaunchAsksFor)
{
    EXPECT_FALSE(SettingsWindowController::shared().window());
    delegate.handleArguments({QStringLiteral("tovi"), QStringLiteral("--settings")});
    EXPECT_TRUE(SettingsWindowController::shared().window());

    EXPECT_FALSE(OnboardingWindowController::shared().window());
    platform.userDefaults().values[QStringLiteral("hasCompletedOnboarding")] = false;
    AppDelegate newUsers;
    newUsers.applicationDidFinishLaunching();
    EXPECT_TRUE(OnboardingWindowController::shared().window());
}

TEST_F(AppDelegateTest, RegistersEachShortcutOnceAndReportsTheRest)
{
    struct Case
    {
        HotKey capture, ocr, input;
        QList<TestHotKeyCenter::Keys> taken;
        QSet<Slot> failed, duplicates;
        size_t registrations;
    };
    const Case cases[] = {
        {optionD, optionS, optionT, {}, {}, {}, 3},
        {optionD, optionD, optionT, {}, {}, {Slot::capture, Slot::ocr}, 2},
        {optionD, optionD, optionD, {}, {}, {Slot::capture, Slot::ocr, Slot::input}, 1},
        {optionD, optionS, optionT, {{1, HotKey::option}}, {Slot::ocr}, {}, 2},
        {{2, 0}, {0, HotKey::option}, optionT, {}, {}, {}, 1},
        {{2, 0}, {2, 0}, {2, 0}, {}, {}, {}, 0},
    };
    for (const Case &c : cases) {
        platform.hotKeyCenter().takenByOthers = c.taken;
        Settings::shared().captureHotKey = c.capture;
        Settings::shared().ocrHotKey = c.ocr;
        Settings::shared().inputHotKey = c.input;
        EXPECT_EQ(HotKeyStatus::shared().failed.get(), c.failed);
        EXPECT_EQ(HotKeyStatus::shared().duplicates.get(), c.duplicates);
        EXPECT_EQ(platform.hotKeyCenter().registered.size(), c.registrations);
    }
}

TEST_F(AppDelegateTest, RecordingSuspendsAllButTheInputShortcut)
{
    const QString name = QStringLiteral("com.brevoll.tovi.hotKeyRecordingChanged");
    auto &center = platform.notificationCenter();
    center.post(name, {{QStringLiteral("recording"), true}});
    Settings::shared().captureHotKey = HotKey{3, HotKey::command};
    EXPECT_FALSE(press(optionD));
    EXPECT_FALSE(press({3, HotKey::command}));
    EXPECT_TRUE(press(optionT));
    center.post(name, {{QStringLiteral("recording"), QStringLiteral("true")}});
    EXPECT_TRUE(press({3, HotKey::command}));
    EXPECT_TRUE(press(optionS));
}

TEST_F(AppDelegateTest, AShortcutTurnsTheSelectionIntoATranslation)
{
    const auto element = select(QStringLiteral(" good morning "));
    element->attributes[QStringLiteral("AXSelectedTextRange")] = {AXError::None, AXRange{0, 3}};
    element->parameterized[QStringLiteral("AXBoundsForRange")] = [](const AXValue &) {
        return AXResult{AXError::None, QRectF(100, 200, 50, 20)};
    };
    ASSERT_TRUE(press(optionD));
    ASSERT_TRUE(showsResult(QStringLiteral("GOOD MORNING")));
    EXPECT_EQ(shown().first().source, QStringLiteral(" good morning "));
    const auto *panel = platform.panelHost().open.first();
    EXPECT_TRUE(panel->key);
    EXPECT_EQ(panel->currentFrame, QRectF(100, 900 - 220 - 8 - 280, 380, 280));
    EXPECT_EQ(platform.application().beeps, 0);
    platform.clock().advance(250ms); // past the delay of the outside monitor
    EXPECT_EQ(platform.clock().pendingActions(), 0) << "the watchdog must end with its capture";
}

TEST_F(AppDelegateTest, SaysWhyThereIsNoText)
{
    press(optionD);
    EXPECT_TRUE(showsSource(Localization::shared().t(Str::messageNoText)));
    EXPECT_EQ(platform.application().beeps, 1);

    platform.accessibility().trusted = false;
    press(optionD);
    EXPECT_TRUE(showsSource(Localization::shared().t(Str::messageNeedAccessibility)));
    EXPECT_EQ(platform.application().beeps, 1);
    EXPECT_EQ(platform.accessibility().trustRequests, 1);
    EXPECT_EQ(shown().size(), 1) << "a new panel replaces the unpinned one";
}

TEST_F(AppDelegateTest, AHungCaptureIsAbandonedAndItsLateResultDropped)
{
    selectInHangingApplication(QStringLiteral("late"));
    press(optionD);
    ASSERT_TRUE(waitUntil([&] { return asked.tryAcquire(); }));
    platform.clock().advance(3900ms);
    EXPECT_TRUE(shown().isEmpty());
    platform.clock().advance(200ms);
    EXPECT_TRUE(showsSource(Localization::shared().t(Str::messageTimeout)));
    EXPECT_EQ(platform.application().beeps, 1);

    answer.release(100);
    select(QStringLiteral("next"));
    press(optionD);
    EXPECT_TRUE(showsResult(QStringLiteral("NEXT")));
    EXPECT_EQ(shown().size(), 1);
    EXPECT_EQ(translated, QStringList(QStringLiteral("next")));
}

TEST_F(AppDelegateTest, ASecondPressSupersedesTheFirst)
{
    selectInHangingApplication(QStringLiteral("first"));
    press(optionD);
    ASSERT_TRUE(waitUntil([&] { return asked.tryAcquire(); }));
    select(QStringLiteral("second"));
    press(optionD);
    drainMainQueue();
    answer.release(100);
    EXPECT_TRUE(showsResult(QStringLiteral("SECOND")));
    EXPECT_EQ(shown(), (QList<Shown>{{QStringLiteral("second"), QStringLiteral("SECOND")}}));
    EXPECT_EQ(translated, QStringList(QStringLiteral("second")));
}

TEST_F(AppDelegateTest, TheInputPanelTranslatesWhatIsSubmitted)
{
    press(optionT);
    ASSERT_TRUE(showsSource(QString()));
    auto *source = platform.panelHost().open.first()->content->findChild<QPlainTextEdit *>();
    const auto submit = [&](const QString &text) {
        source->setPlainText(text);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(source, &key);
    };
    submit(QStringLiteral("  \n "));
    EXPECT_EQ(shown().first().result, QString());
    submit(QStringLiteral("  typed\n"));
    EXPECT_TRUE(showsResult(QStringLiteral("TYPED")));

    // The answer to an older text comes too late.
    session->answer = [&](const QString &text) {
        answer.acquire();
        return text.toUpper();
    };
    submit(QStringLiteral("slow"));
    submit(QStringLiteral("typed"));
    answer.release(2);
    await(Translator::shared().translate(QStringLiteral("later"), QStringLiteral("es"),
                                         QStringLiteral("auto"), std::nullopt, {}));
    EXPECT_TRUE(showsResult(QStringLiteral("TYPED")));
}

TEST_F(AppDelegateTest, CopyingTwiceQuicklyTranslatesWhatWasCopied)
{
    auto &pasteboard = platform.pasteboard();
    pasteboard.put(QStringLiteral("copied"));
    platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};
    const auto copy = [&](Clock::Duration later, quint32 modifiers = ModifierFlag::command) {
        platform.clock().advance(later);
        platform.eventMonitors().keyDown.emitToAll({keyCodeC, modifiers});
    };
    const auto isTranslated = [&] {
        await(PasteboardQueue::shared().run([] { return true; })); // what was to be read is read
        const bool shows = !shown().isEmpty();
        for (auto *panel : platform.panelHost().open)
            panel->onEscape();
        drainMainQueue();
        return shows;
    };
    copy(0ms);
    copy(440ms);
    ASSERT_TRUE(showsResult(QStringLiteral("COPIED")));
    EXPECT_EQ(shown().first().source, QStringLiteral("copied"));
    EXPECT_TRUE(isTranslated());

    copy(1ms); // a third one begins a new pair
    copy(460ms);
    EXPECT_FALSE(isTranslated());
    copy(440ms, ModifierFlag::command | ModifierFlag::shift);
    EXPECT_TRUE(isTranslated());
    copy(1s, 0);
    copy(100ms);
    EXPECT_FALSE(isTranslated());

    // A terminal has a key of its own; the usual one interrupts there.
    platform.workspace().frontmost->copyModifiers = ModifierFlag::command | ModifierFlag::shift;
    copy(1s);
    copy(100ms);
    EXPECT_FALSE(isTranslated());
    copy(1s, ModifierFlag::command | ModifierFlag::shift);
    copy(100ms, ModifierFlag::command | ModifierFlag::shift);
    EXPECT_TRUE(isTranslated());
    platform.workspace().frontmost->copyModifiers = ModifierFlag::command;

    EXPECT_EQ(platform.application().beeps, 0);
    pasteboard.secret = true;
    copy(1s);
    copy(100ms);
    EXPECT_FALSE(isTranslated());
    EXPECT_EQ(platform.application().beeps, 1);
    pasteboard.secret = false;

    Settings::shared().enableDoubleCopy = false;
    copy(1s);
    Settings::shared().enableDoubleCopy = true;
    copy(100ms);
    EXPECT_FALSE(isTranslated()); // the first one was not remembered
}

TEST_F(AppDelegateTest, ItsOwnCopyKeyCountsForNothing)
{
    platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};
    int seen = 0;
    platform.keyboard().onPost = [&] {
        ++seen;
        asyncOnMain([this] {
            platform.eventMonitors().keyDown.emitToAll({keyCodeC, ModifierFlag::command});
            platform.eventMonitors().keyDown.emitToAll({keyCodeC, ModifierFlag::command});
        });
        platform.pasteboard().put(QStringLiteral("selected"));
    };
    press(optionD);
    ASSERT_TRUE(showsResult(QStringLiteral("SELECTED")));
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(shown().size(), 1);
    // The capture is over, its keystroke may still be on its way.
    platform.pasteboard().put(QStringLiteral("copied"));
    const auto sourceAfterPair = [&] {
        platform.eventMonitors().keyDown.emitToAll({keyCodeC, ModifierFlag::command});
        platform.eventMonitors().keyDown.emitToAll({keyCodeC, ModifierFlag::command});
        await(PasteboardQueue::shared().run([] { return true; }));
        return shown().first().source;
    };
    platform.clock().advance(250ms);
    EXPECT_EQ(sourceAfterPair(), QStringLiteral("selected"));
    platform.clock().advance(50ms);
    EXPECT_EQ(sourceAfterPair(), QStringLiteral("copied"));
    EXPECT_TRUE(showsResult(QStringLiteral("COPIED")));
}

TEST_F(AppDelegateTest, EditingKeysWorkInTextViewsOnly)
{
    press(optionT);
    ASSERT_TRUE(showsSource(QString()));
    QWidget &content = *platform.panelHost().open.first()->content;
    auto *source = content.findChild<QPlainTextEdit *>();
    source->setPlainText(QStringLiteral("text"));
    content.show();
    content.activateWindow();
    source->setFocus();
    ASSERT_TRUE(waitUntil([&] { return QApplication::focusWidget() == source; }));
    const auto &monitor = platform.eventMonitors().localHandler;
    constexpr quint32 keyCodeA = 0, keyCodeD = 2;
    EXPECT_FALSE(monitor({keyCodeA, ModifierFlag::command | ModifierFlag::option}));
    EXPECT_FALSE(monitor({keyCodeD, ModifierFlag::command}));
    EXPECT_TRUE(monitor({keyCodeA, ModifierFlag::command | ModifierFlag::shift}));
    EXPECT_EQ(source->textCursor().selectedText(), QStringLiteral("text"));
    source->clearFocus();
    EXPECT_FALSE(monitor({keyCodeA, ModifierFlag::command}));
}

TEST_F(AppDelegateTest, AFailedTranslationSaysSo)
{
    select(QStringLiteral("words"));
    session->answer = [](const QString &) -> QString {
        throw TranslationFrameworkError(QStringLiteral("the engine is gone"));
    };
    press(optionD);
    EXPECT_TRUE(showsResult(QStringLiteral("Translation failed: the engine is gone")));
}

} // namespace
} // namespace tovi
