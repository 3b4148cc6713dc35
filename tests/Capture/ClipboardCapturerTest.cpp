// SPDX-License-Identifier: MIT
#include "Capture/ClipboardCapturer.h"

#include <gtest/gtest.h>

#include "Capture/PasteboardWatcher.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using ClipboardCapturer::CopiedText;

const QList<PasteboardItem> rich{{QStringLiteral("text/plain"), "before"},
                                 {QStringLiteral("text/html"), "<b>before</b>"},
                                 {QStringLiteral("image/png"), QByteArray("\x89PNG\0\1", 6)},
                                 {QStringLiteral("application/x-own"), {}}};

class ClipboardCapturerTest : public testing::Test
{
protected:
    ClipboardCapturerTest()
    {
        platform.workspace().frontmost = RunningApplication{QStringLiteral("Editor"), {}, 1};
        pasteboard.put(rich);
    }
    ~ClipboardCapturerTest() override { drainMainQueue(); } // nothing is left for the next test
    std::optional<CopiedText> capture(bool restore = true)
    {
        return ClipboardCapturer::selectedText(restore, false, 400ms);
    }
    Clock::Duration elapsed() const { return platform.clock().now() - start; }

    mutable TestPlatform platform;
    TestPasteboard &pasteboard = platform.pasteboard();
    TestKeyboard &keyboard = platform.keyboard();
    Clock::Time start = platform.clock().now();
};

TEST_F(ClipboardCapturerTest, TakesWhatIsCopiedAndPutsBackAllForms)
{
    keyboard.onPost = [&] { pasteboard.put(QStringLiteral(" copied\n")); };
    EXPECT_EQ(capture(), (CopiedText{QStringLiteral(" copied\n"), false}));
    EXPECT_EQ(keyboard.posted, QList<KeyEvent>({{keyCodeC, ModifierFlag::command}}));
    EXPECT_EQ(pasteboard.contents(), rich);
    EXPECT_EQ(elapsed(), 50ms);

    pasteboard.unreadable << QStringLiteral("image/png");
    EXPECT_TRUE(capture());
    EXPECT_EQ(pasteboard.contents(), (QList{rich[0], rich[1], rich[3]}));

    EXPECT_TRUE(capture(false));
    EXPECT_EQ(pasteboard.string(), QStringLiteral(" copied\n"));
}

struct Outcome
{
    const char *name;
    std::function<void(TestPasteboard &)> afterPost;
    std::function<void(TestPasteboard &)> afterCapture;
    bool isCaptured;
    bool isRestored; ///< or else what the other programs wrote stays
};

TEST_F(ClipboardCapturerTest, LeavesAloneWhatOthersPutThereMeanwhile)
{
    const auto putText = [](TestPasteboard &p) { p.put(QStringLiteral("copied")); };
    const auto nothing = [](TestPasteboard &) {};
    const auto putImage = [](TestPasteboard &p) { p.put({{QStringLiteral("image/png"), "png"}}); };
    const auto clear = [](TestPasteboard &p) { p.put(QList<PasteboardItem>()); };
    const auto putEmptyText = [](TestPasteboard &p) {
        p.put({{QStringLiteral("text/plain"), {}}, {QStringLiteral("text/plain;charset=utf-8"), {}}});
    };
    const auto putEmptyMixed = [](TestPasteboard &p) {
        p.put({{QStringLiteral("text/plain"), {}}, {QStringLiteral("image/png"), {}}});
    };
    const Outcome outcomes[] = {
        {"plain", putText, nothing, true, true},
        {"image only", putImage, nothing, false, false},
        {"a clipboard manager", putText, putText, true, false},
        {"the owner goes", putText, clear, true, true},
        {"copies an empty text", putEmptyText, nothing, false, true},
        {"copies an empty text and more", putEmptyMixed, nothing, false, false},
        {"copies nothing and clears", clear, nothing, false, true},
    };
    for (const Outcome &outcome : outcomes) {
        SCOPED_TRACE(outcome.name);
        pasteboard.put(rich);
        pasteboard.writes.clear();
        keyboard.onPost = [&] { outcome.afterPost(pasteboard); };
        pasteboard.onText = [&] {
            if (pasteboard.contents() != rich)
                outcome.afterCapture(pasteboard);
        };
        EXPECT_EQ(capture().has_value(), outcome.isCaptured);
        EXPECT_EQ(pasteboard.contents() == rich, outcome.isRestored);
        EXPECT_EQ(pasteboard.writes.size(), outcome.isRestored ? 1 : 0);
    }
}

TEST_F(ClipboardCapturerTest, LooksOnceMoreBeforeItPutsBack)
{
    keyboard.onPost = [&] { pasteboard.put(QStringLiteral("copied")); };
    platform.clock().onWait = [&](Clock::Duration duration) {
        if (duration == 50ms)
            pasteboard.put(QStringLiteral("theirs"));
    };
    EXPECT_TRUE(capture());
    EXPECT_EQ(pasteboard.string(), QStringLiteral("theirs"));
}

TEST_F(ClipboardCapturerTest, WritesNothingWhereNothingWasCopiedOrNothingWasThere)
{
    EXPECT_FALSE(capture());
    EXPECT_EQ(elapsed(), 400ms);
    pasteboard.put(QList<PasteboardItem>());
    keyboard.onPost = [&] { pasteboard.put(QStringLiteral("copied")); };
    EXPECT_TRUE(capture());
    EXPECT_TRUE(pasteboard.writes.isEmpty());

    // Not asked for at all where no key copies.
    platform.workspace().frontmost->copyModifiers.reset();
    keyboard.posted.clear();
    EXPECT_FALSE(capture());
    platform.workspace().frontmost.reset();
    EXPECT_FALSE(capture());
    EXPECT_TRUE(keyboard.posted.isEmpty());
}

TEST_F(ClipboardCapturerTest, BlankAndSecretTextsAreNone)
{
    keyboard.onPost = [&] { pasteboard.put(QStringLiteral(" \n")); };
    EXPECT_FALSE(capture());
    EXPECT_EQ(pasteboard.contents(), rich);

    keyboard.onPost = [&] {
        pasteboard.put(QStringLiteral("password"));
        pasteboard.secret = true;
    };
    EXPECT_FALSE(capture());
    pasteboard.put(QStringLiteral("password"));
    EXPECT_FALSE(ClipboardCapturer::readPasteboardText());
    pasteboard.secret = false;
    EXPECT_EQ(ClipboardCapturer::readPasteboardText(), QStringLiteral("password"));
    pasteboard.put(QStringLiteral(" "));
    EXPECT_FALSE(ClipboardCapturer::readPasteboardText());
}

TEST_F(ClipboardCapturerTest, AHangingOwnerCostsTheTimeOutOnce)
{
    pasteboard.hangs = true;
    keyboard.onPost = [&] {
        pasteboard.hangs = false;
        pasteboard.put(QStringLiteral("copied"));
    };
    EXPECT_TRUE(capture());
    EXPECT_EQ(elapsed(), 450ms);
    EXPECT_EQ(pasteboard.string(), QStringLiteral("copied")); // what could not be read is not put back

    keyboard.onPost = [&] {
        pasteboard.put(QStringLiteral("never told"));
        pasteboard.hangs = true;
    };
    start = platform.clock().now();
    EXPECT_FALSE(capture());
    EXPECT_LE(elapsed(), 900ms);
}

TEST_F(ClipboardCapturerTest, AnItemThatAnswersLateMayHaveCopiedAllTheSame)
{
    const auto item = std::make_shared<TestElement>();
    item->attributes[QStringLiteral("AXRole")] = {AXError::None, QStringLiteral("AXMenuItem")};
    item->attributes[QStringLiteral("AXIdentifier")] = {AXError::None, QStringLiteral("copy:")};
    const auto bar = std::make_shared<TestElement>();
    bar->attributes[QStringLiteral("AXChildren")] = {AXError::None, QList{AXElement(item)}};
    const auto application = std::make_shared<TestElement>();
    application->attributes[QStringLiteral("AXMenuBar")] = {AXError::None, AXElement(bar)};
    platform.accessibility().applications[1] = AXElement(application);
    for (const AXError error : {AXError::None, AXError::TimedOut, AXError::CannotComplete}) {
        keyboard.posted.clear();
        item->onAction = [&](const QString &name) {
            EXPECT_EQ(name, QStringLiteral("AXPress"));
            pasteboard.put(QStringLiteral("copied"));
            return error;
        };
        const auto copied = ClipboardCapturer::selectedText(true, true, 400ms);
        EXPECT_EQ(copied == (CopiedText{QStringLiteral("copied"), true}), error != AXError::CannotComplete);
        EXPECT_EQ(keyboard.posted.isEmpty(), error != AXError::CannotComplete);
        pasteboard.put(rich);
    }
}

TEST_F(ClipboardCapturerTest, TypesOnceTheModifiersAreUp)
{
    const Clock::Time released = start + 200ms;
    keyboard.onAsk = [&] { return platform.clock().now() < released ? quint32(ModifierFlag::option) : 0; };
    Clock::Time posted;
    keyboard.onPost = [&] {
        posted = platform.clock().now();
        EXPECT_TRUE(ClipboardCapturer::isSimulating());
    };
    capture();
    EXPECT_EQ(posted, released);
    keyboard.onAsk = [] { return ModifierFlag::shift; };
    start = platform.clock().now();
    capture();
    EXPECT_EQ(posted - start, 600ms);
}

TEST_F(ClipboardCapturerTest, AnOlderSimulationDoesNotEndANewerOne)
{
    capture();
    platform.clock().advance(200ms);
    capture();
    platform.clock().advance(299ms); // the first one's end has passed
    EXPECT_TRUE(ClipboardCapturer::isSimulating());
    platform.clock().advance(1ms);
    EXPECT_FALSE(ClipboardCapturer::isSimulating());
}

} // namespace
} // namespace tovi
