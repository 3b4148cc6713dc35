// SPDX-License-Identifier: MIT
#include <QLabel>
#include <gtest/gtest.h>

#include "Localization.h"
#include "Settings.h"
#include "Support/TestPlatform.h"
#include "UI/Controls/IconButton.h"
#include "UI/Controls/PopupMenuButton.h"
#include "UI/EditableTextView.h"
#include "UI/ResultPanelManager.h"
#include "UI/ResultView.h"
#include "UI/ScrollableTextView.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

class ResultPanelTest : public testing::Test
{
protected:
    using TestPanel = TestPanelHost::TestPanel;

    std::shared_ptr<ResultViewModel> show(const QString &text, std::optional<QRectF> near = {})
    {
        auto model = std::make_shared<ResultViewModel>(CaptureResult{.text = text});
        ResultPanelManager::shared().show(model, near);
        drainMainQueue();
        return model;
    }
    QList<TestPanel *> &open() { return platform.panelHost().open; }
    void clickElsewhere()
    {
        platform.eventMonitors().mouseDown.emitToAll();
        drainMainQueue();
    }
    template <class Widget>
    Widget *find(const QString &name)
    {
        for (Widget *widget : open().last()->content->findChildren<Widget *>()) {
            if (widget->accessibleName().contains(name))
                return widget;
        }
        return nullptr;
    }
    IconButton *button(Str help) { return find<IconButton>(Localization::shared().t(help)); }
    QStringList labels()
    {
        QStringList texts;
        for (const QLabel *label : open().last()->content->findChildren<QLabel *>()) {
            if (label->isVisibleTo(open().last()->content.get()))
                texts << label->text();
        }
        return texts;
    }

    TestPlatform platform;
};

TEST_F(ResultPanelTest, ClicksElsewhereCloseWhatIsNotPinned)
{
    int dismissals = 0;
    auto model = show(QStringLiteral("first"));
    model->onDismiss = [&] { ++dismissals; };
    clickElsewhere();
    ASSERT_EQ(open().size(), 1) << "too early";
    platform.clock().advance(250ms);
    button(Str::resultPin)->click();
    EXPECT_TRUE(model->isPinned);
    clickElsewhere();
    ASSERT_EQ(open().size(), 1);
    show(QStringLiteral("second"));
    show(QStringLiteral("third"));
    EXPECT_EQ(open().size(), 2) << "the pinned one stays, the other is replaced";
    platform.clock().advance(250ms);
    clickElsewhere();
    ASSERT_EQ(open().size(), 1);

    button(Str::resultPin)->click();
    EXPECT_EQ(dismissals, 0);
    clickElsewhere(); // at once, without a delay
    EXPECT_TRUE(open().isEmpty());
    EXPECT_EQ(dismissals, 1);
    EXPECT_TRUE(platform.eventMonitors().mouseDown.isEmpty());
}

TEST_F(ResultPanelTest, HasTheSizeOfItsContentWithinLimits)
{
    Settings::shared().resultPanelWidth = 900;
    show(QStringLiteral("one line"), QRectF(100, 700, 50, 20));
    EXPECT_EQ(open().last()->currentFrame.size(), QSizeF(640, 280));
    const QRectF before = open().last()->currentFrame;
    const auto model = show(QStringLiteral("word ").repeated(400), QRectF(100, 700, 50, 20));
    EXPECT_EQ(open().last()->currentFrame.height(), 480);
    EXPECT_EQ(open().last()->currentFrame.bottom(), before.bottom()) << "the upper edge";
    // Sizes that no text can have.
    for (const double size : {0.0, -5.0, 1e9, std::nan(""), HUGE_VAL}) {
        Settings::shared().resultFontSize = size;
        model->translatedText = QStringLiteral("translated %1").arg(size);
        drainMainQueue();
        model->onResize();
        EXPECT_LE(open().last()->currentFrame.height(), 480);
    }
}

TEST_F(ResultPanelTest, RecognitionCountsTheSecondsAndHoldsTheFooter)
{
    const auto model = show(QString());
    model->updateOCRProgress(OCRProgress::capturing);
    drainMainQueue();
    EXPECT_TRUE(labels().contains(QStringLiteral("Capturing screen…")));
    EXPECT_TRUE(labels().contains(QStringLiteral("0 s")));
    platform.clock().advance(2500ms);
    model->updateOCRProgress(OCRProgress::recognizing);
    drainMainQueue();
    EXPECT_TRUE(labels().contains(QStringLiteral("2 s")));
    platform.clock().advance(500ms);
    EXPECT_TRUE(labels().contains(QStringLiteral("3 s")));
    EXPECT_FALSE(button(Str::resultCopy)->isEnabled());
    EXPECT_FALSE(find<EditableTextView>(QString())->isVisibleTo(open().last()->content.get()));

    model->onDismiss = [] {};
    model->finishOCR(std::nullopt, QStringLiteral("nothing"));
    EXPECT_FALSE(model->onDismiss) << "closing the panel no longer concerns the capture";
    drainMainQueue();
    EXPECT_TRUE(labels().isEmpty());
    EXPECT_TRUE(button(Str::resultCopy)->isEnabled());
    EXPECT_EQ(find<ScrollableTextView>(QString())->toPlainText(), QStringLiteral("nothing"));
    EXPECT_FALSE(
        find<PopupMenuButton>(QStringLiteral("Translate to"))->isVisibleTo(open().last()->content.get()));
    const int pending = platform.clock().pendingActions();
    platform.clock().advance(5s);
    EXPECT_LE(platform.clock().pendingActions(), pending) << "nothing ticks any more";
}

TEST_F(ResultPanelTest, TheSourceIsEditedAndTheCopyConfirmed)
{
    const auto model = show(QStringLiteral("text"));
    int submissions = 0;
    model->onSubmitSource = [&] { ++submissions; };
    auto *source = open().last()->content->findChild<EditableTextView *>();
    source->insertPlainText(QStringLiteral("new "));
    EXPECT_EQ(model->sourceText.get(), QStringLiteral("new text"));
    drainMainQueue();
    EXPECT_EQ(source->textCursor().position(), 4) << "the caret stays";
    emit source->submitted();
    EXPECT_EQ(submissions, 1);
    button(Str::resultCopy)->click();
    EXPECT_EQ(platform.pasteboard().string(), QStringLiteral("new text"));
    platform.clock().advance(1s);
    button(Str::resultCopy)->click();
    platform.clock().advance(1s);
    EXPECT_TRUE(model->didCopy);
    platform.clock().advance(200ms);
    EXPECT_FALSE(model->didCopy);
}

} // namespace
} // namespace tovi
