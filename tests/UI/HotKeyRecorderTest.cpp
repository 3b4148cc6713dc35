// SPDX-License-Identifier: MIT
#include <memory>

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <gtest/gtest.h>

#include "Settings.h"
#include "Support/TestPlatform.h"
#include "UI/HotKeyRecorder.h"

namespace tovi {
namespace {

using Slot = HotKeyStatus::Slot;

constexpr quint32 firstKey = 100; // of the test's keyboard

class HotKeyRecorderTest : public testing::Test
{
protected:
    HotKeyRecorderTest()
    {
        auto *row = new QHBoxLayout(&window);
        for (QWidget *control :
             {makeHotKeyRecorder(Slot::capture, nullptr), makeHotKeyRecorder(Slot::ocr, nullptr)})
            row->addWidget(control);
        window.show();
        window.activateWindow();
        drainMainQueue();
    }
    HotKeyRecorder &recorder(int i) { return *window.findChildren<HotKeyRecorder *>().at(i); }
    static void press(HotKeyRecorder &control, int key, quint32 keyCode, Qt::KeyboardModifiers modifiers = {},
                      bool isRepeated = false)
    {
        QKeyEvent override(QEvent::ShortcutOverride, key, modifiers, keyCode + firstKey, 0, 0);
        override.ignore();
        QApplication::sendEvent(&control, &override);
        EXPECT_EQ(override.isAccepted(), control.isRecording()) << "a menu would take the key";
        QKeyEvent event(QEvent::KeyPress, key, modifiers, keyCode + firstKey, 0, 0, {}, isRepeated);
        QApplication::sendEvent(&control, &event);
    }

    TestPlatform platform;
    QList<bool> posted;
    Subscription observed = platform.notificationCenter().observe(
        QStringLiteral("com.brevoll.tovi.hotKeyRecordingChanged"),
        [this](const QVariantMap &info) { posted << info.value(QStringLiteral("recording")).toBool(); });
    QWidget window;
};

TEST_F(HotKeyRecorderTest, RecordsWhatIsACombination)
{
    const HotKey old = Settings::shared().captureHotKey;
    struct Case
    {
        const char *what;
        int key;
        quint32 keyCode;
        Qt::KeyboardModifiers modifiers;
        std::optional<HotKey> value; ///< none: refused
        int beeps;
    };
    const Case cases[] = {
        {"Alt-Shift-K", Qt::Key_K, 40, Qt::AltModifier | Qt::ShiftModifier, HotKey{40, 2560}, 0},
        {"Ctrl-Q", Qt::Key_Q, 12, Qt::ControlModifier | Qt::KeypadModifier, HotKey{12, 256}, 0},
        {"Super-Tab", Qt::Key_Tab, 48, Qt::MetaModifier, HotKey{48, 4096}, 0},
        {"Ctrl-A", Qt::Key_A, 0, Qt::ControlModifier, HotKey{0, 256}, 0},
        {"Backspace", Qt::Key_Backspace, 51, {}, HotKey{}, 0},
        {"Delete", Qt::Key_Delete, 117, Qt::AltModifier, HotKey{}, 0},
        {"Esc", Qt::Key_Escape, 53, Qt::AltModifier, old, 0},
        {"K", Qt::Key_K, 40, {}, std::nullopt, 1},
        {"Shift-K", Qt::Key_K, 40, Qt::ShiftModifier, std::nullopt, 1},
        {"a key that no shortcut can have", Qt::Key_Print, quint32(-1), Qt::AltModifier, std::nullopt, 1},
        {"a modifier alone", Qt::Key_Alt, 58, Qt::AltModifier, std::nullopt, 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Settings::shared().captureHotKey = old;
        drainMainQueue();
        posted.clear();
        platform.application().beeps = 0;
        recorder(0).click();
        press(recorder(0), c.key, c.keyCode, c.modifiers);
        press(recorder(0), c.key, c.keyCode, c.modifiers, true);
        EXPECT_EQ(platform.application().beeps, c.beeps);
        EXPECT_EQ(recorder(0).isRecording(), !c.value);
        EXPECT_EQ(Settings::shared().captureHotKey.get(), c.value.value_or(old));
        EXPECT_EQ(recorder(0).hotKey(), c.value.value_or(old));
        EXPECT_EQ(posted, c.value ? (QList{true, false}) : QList{true});
        if (!c.value)
            press(recorder(0), Qt::Key_Escape, 53);
    }
}

TEST_F(HotKeyRecorderTest, EndsWithTheFocusAndWithItself)
{
    const HotKey old = Settings::shared().captureHotKey;
    recorder(0).click();
    recorder(1).setFocus(Qt::MouseFocusReason);
    recorder(1).click();
    EXPECT_EQ(posted, (QList{true, false, true}));
    recorder(1).hide();
    EXPECT_EQ(posted, (QList{true, false, true, false}));
    recorder(0).click();
    delete &recorder(0);
    EXPECT_EQ(posted, (QList{true, false, true, false, true, false}));
    EXPECT_EQ(Settings::shared().captureHotKey.get(), old);
}

TEST_F(HotKeyRecorderTest, APressElsewhereEndsItAndOneOnItDoesNot)
{
    recorder(0).click();
    const auto pressOn = [](QWidget &widget) {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(1, 1), widget.mapToGlobal(QPointF(1, 1)),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    };
    pressOn(recorder(0));
    EXPECT_TRUE(recorder(0).isRecording());
    pressOn(window);
    EXPECT_FALSE(recorder(0).isRecording());
    EXPECT_EQ(posted, (QList{true, false}));
    EXPECT_EQ(recorder(0).hotKey(), Settings::defaultCaptureHotKey);
}

TEST_F(HotKeyRecorderTest, FollowsItsSetting)
{
    Settings::shared().ocrHotKey = HotKey{40, HotKey::command};
    drainMainQueue();
    EXPECT_EQ(recorder(1).hotKey(), (HotKey{40, HotKey::command}));
    EXPECT_EQ(recorder(0).hotKey(), Settings::defaultCaptureHotKey);
}

} // namespace
} // namespace tovi
