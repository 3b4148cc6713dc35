// SPDX-License-Identifier: MIT
#include <QListWidget>
#include <QScrollBar>
#include <gtest/gtest.h>

#include "HotKeyStatus.h"
#include "Platform/SystemPreferences.h"
#include "Settings.h"
#include "UI/Forms/ToggleSwitch.h"
#include "UI/MainMenu.h"
#include "UI/SettingsToolbar.h"
#include "UI/SettingsWindowController.h"
#include "UI/WindowFixture.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Policy = Application::ActivationPolicy;

class SettingsWindowTest : public WindowTest
{
protected:
    RegularWindow *window() override { return controller().window(); }
    static SettingsWindowController &controller() { return SettingsWindowController::shared(); }
    QJsonValue stored(const char *key)
    {
        drainMainQueue();
        return platform.userDefaults().values.value(QLatin1String(key));
    }
    void show(SettingsPane pane = SettingsPane::general)
    {
        controller().show();
        controller().select(pane);
        drainMainQueue();
    }
};

TEST_F(SettingsWindowTest, ThereIsOneWindowAndItRemembersItsPane)
{
    show();
    EXPECT_EQ(platform.application().policy, Policy::Regular);
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("Tovi Settings"));
    EXPECT_EQ(window()->size(), SettingsWindowController::contentSize);
    auto *first = window();
    show(SettingsPane::shortcuts);
    EXPECT_EQ(window(), first);
    window()->close();
    EXPECT_EQ(window(), nullptr);
    EXPECT_EQ(platform.application().policy, Policy::Accessory);
    drainMainQueue();

    controller().show();
    auto *toolbar = window()->findChild<SettingsToolbar *>();
    EXPECT_EQ(toolbar->selectedItem(), QStringLiteral("com.brevoll.tovi.settings.shortcuts"));
    EXPECT_EQ(count(Str::captureShortcut), 1);
    find<QAbstractButton>(Str::paneAbout)->click();
    EXPECT_EQ(count(Str::aboutSubtitle), 1);
    press(find<QAbstractButton>(Str::paneAbout), Qt::Key_Right);
    EXPECT_EQ(controller().selectedPane(), SettingsPane::general);
    EXPECT_TRUE(find<QAbstractButton>(Str::paneGeneral)->isChecked());
}

TEST_F(SettingsWindowTest, SwitchesWriteThroughAndFollow)
{
    Settings &settings = Settings::shared();
    struct Case
    {
        SettingsPane pane;
        Str title;
        const char *key;
        Stored<bool> &field;
    };
    const Case cases[] = {
        {SettingsPane::general, Str::dictionaryToggle, "enableDictionary", settings.enableDictionary},
        {SettingsPane::general, Str::doubleCopyShortcut, "enableDoubleCopy", settings.enableDoubleCopy},
        {SettingsPane::general, Str::stepBrowser, "browserScriptEnabled", settings.browserScriptEnabled},
        {SettingsPane::general, Str::stepClipboard, "clipboardFallback", settings.clipboardFallback},
        {SettingsPane::general, Str::preferMenuCopy, "preferMenuBarCopy", settings.preferMenuBarCopy},
        {SettingsPane::general, Str::menuRestoreClipboard, "restoreClipboard", settings.restoreClipboard},
        {SettingsPane::general, Str::stepOCR, "ocrEnabled", settings.ocrEnabled},
        {SettingsPane::general, Str::ocrRegionToggle, "ocrRegionSelection", settings.ocrRegionSelection},
        {SettingsPane::shortcuts, Str::doubleCopyShortcut, "enableDoubleCopy", settings.enableDoubleCopy},
    };
    for (const Case &entry : cases) {
        SCOPED_TRACE(entry.key);
        show(entry.pane);
        auto *toggle = find<ToggleSwitch>(entry.title);
        ASSERT_TRUE(toggle);
        const bool before = entry.field;
        EXPECT_EQ(toggle->isChecked(), before);
        toggle->click();
        EXPECT_EQ(stored(entry.key), QJsonValue(!before));
        entry.field = before;
        drainMainQueue();
        EXPECT_EQ(toggle->isChecked(), before);
    }
    show();
    EXPECT_EQ(count(Str::ocrRegionDescription), 1);
    find<ToggleSwitch>(Str::ocrRegionToggle)->click();
    EXPECT_EQ(count(Str::ocrPointDescription), 1);
}

TEST_F(SettingsWindowTest, ARefusedLoginItemSwitchesBackAndSaysWhy)
{
    platform.loginItem().error = QStringLiteral("disk full");
    show();
    auto *toggle = find<ToggleSwitch>(Str::launchAtLogin);
    toggle->click();
    drainMainQueue();
    EXPECT_FALSE(toggle->isChecked());
    EXPECT_TRUE(symbols().contains(QStringLiteral("exclamationmark.triangle.fill")));
    platform.loginItem().error.reset();
    toggle->click();
    drainMainQueue();
    EXPECT_TRUE(toggle->isChecked());
    EXPECT_FALSE(symbols().contains(QStringLiteral("exclamationmark.triangle.fill")));
}

TEST_F(SettingsWindowTest, PickersWriteWhatIsPickedAndNothingElse)
{
    struct Case
    {
        Str title;
        Stored<QString> &field;
        int index;
        QString picked;
    };
    Settings &settings = Settings::shared();
    const Case cases[] = {
        {Str::appearance, settings.appearance, 2, AppearanceMode::dark},
        {Str::windowPosition, settings.windowPosition, 1, WindowPosition::center},
        {Str::targetLanguage, settings.targetLanguage, 8, QStringLiteral("ru")},
    };
    const QString unknown = QStringLiteral("pt-BR");
    for (const Case &entry : cases)
        entry.field = unknown;
    platform.userDefaults().writes.clear();
    show();
    for (const Case &entry : cases) {
        auto *picker = find<Picker>(entry.title);
        ASSERT_TRUE(picker);
        EXPECT_EQ(picker->currentIndex(), -1);
        EXPECT_EQ(picker->placeholderText(), unknown);
        EXPECT_EQ(entry.field.get(), unknown);
    }
    EXPECT_TRUE(platform.userDefaults().writes.isEmpty());
    for (const Case &entry : cases) {
        auto *picker = find<Picker>(entry.title);
        picker->showPopup();
        const auto actions = QApplication::activePopupWidget()->actions();
        ASSERT_GT(actions.size(), entry.index);
        actions.at(entry.index)->trigger();
        QApplication::activePopupWidget()->close();
        EXPECT_EQ(entry.field.get(), entry.picked);
        EXPECT_EQ(picker->tag(), entry.picked);
        drainMainQueue();
    }
}

TEST_F(SettingsWindowTest, SlidersKeepToTheirStepsAndLimits)
{
    Settings::shared().resultPanelWidth = 1000;
    show();
    EXPECT_EQ(stored("resultPanelWidth"), 1000) << "showing it changes nothing";
    struct Step
    {
        double from;
        Qt::Key key;
        double to;
    };
    for (const Step &step :
         {Step{380, Qt::Key_Right, 390}, Step{383, Qt::Key_Left, 370}, Step{300, Qt::Key_Left, 300},
          Step{380, Qt::Key_End, 640}, Step{640, Qt::Key_PageDown, 590}, Step{590, Qt::Key_Home, 300}}) {
        Settings::shared().resultPanelWidth = step.from;
        drainMainQueue();
        press(find<FormSlider>(Str::widthLabel), step.key);
        EXPECT_EQ(stored("resultPanelWidth"), step.to) << step.from;
    }
    auto *slider = find<FormSlider>(Str::fontSize);
    for (const double place : {0.52, 5.0, -1.0}) {
        QMouseEvent event(QEvent::MouseButtonPress, QPointF(place * slider->width(), 10), QPointF(),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(slider, &event);
        EXPECT_EQ(stored("resultFontSize"), place > 1 ? 26 : place < 0 ? 11 : 19) << place;
    }
}

TEST_F(SettingsWindowTest, ANewLanguageRelabelsEverythingAndKeepsTheKeyboard)
{
    show();
    auto *picker = find<Picker>(Str::interfaceLanguage);
    picker->setFocus(Qt::TabFocusReason);
    picker->setTag(QStringLiteral("fr"));
    press(picker, Qt::Key_Down);
    EXPECT_EQ(Localization::shared().language.get(), AppLanguage::de);
    EXPECT_EQ(window()->windowTitle(), QStringLiteral("Tovi-Einstellungen"));
    for (const SettingsPane pane : SettingsPanes::all())
        EXPECT_TRUE(find<QAbstractButton>(SettingsPanes::title(pane)));
    drainMainQueue();
    EXPECT_EQ(count(Str::targetLanguage), 1);
    EXPECT_EQ(window()->focusWidget(), find<Picker>(Str::interfaceLanguage));
}

TEST_F(SettingsWindowTest, ShortcutRowsTellWhatIsWrong)
{
    using Slot = HotKeyStatus::Slot;
    show(SettingsPane::shortcuts);
    HotKeyStatus::shared().duplicates = {Slot::capture, Slot::input};
    HotKeyStatus::shared().failed = {Slot::ocr};
    EXPECT_EQ(count(Str::hotKeyDuplicate), 2);
    EXPECT_EQ(count(Str::hotKeyInUse), 1);
    HotKeyStatus::shared().duplicates = {};
    EXPECT_EQ(count(Str::hotKeyDuplicate), 0);

    Settings::shared().inputHotKey = HotKey{};
    button(Str::resetShortcuts)->click();
    EXPECT_EQ(Settings::shared().inputHotKey.get(), Settings::defaultInputHotKey);
}

TEST_F(SettingsWindowTest, PermissionsAreReadAgainAndAskedFor)
{
    const QString granted = QStringLiteral("checkmark.circle.fill");
    const QString refused = QStringLiteral("xmark.circle.fill");
    const QString unknown = QStringLiteral("questionmark.circle.fill");
    platform.accessibility().trusted = false;
    show(SettingsPane::permissions);
    EXPECT_EQ(symbols(), QStringList({refused, granted, unknown}));
    EXPECT_FALSE(rowButton(Str::request, Str::screenPerm));
    EXPECT_FALSE(rowButton(Str::request, Str::automationPerm));
    rowButton(Str::request, Str::accessibilityPerm)->click();
    EXPECT_EQ(platform.accessibility().trustRequests, 1);
    platform.accessibility().trusted = true; // the desktop takes its time
    platform.clock().advance(1s);
    EXPECT_EQ(symbols(), QStringList({granted, granted, unknown}));
    for (const Str row : {Str::accessibilityPerm, Str::screenPerm, Str::automationPerm})
        rowButton(Str::openSettings, row)->click();
    EXPECT_EQ(platform.workspace().opened,
              QStringList({SystemPreferences::accessibility, SystemPreferences::screenCapture,
                           SystemPreferences::automation}));
    platform.screenCapture().allowed = false;
    button(Str::refreshStatus)->click();
    EXPECT_EQ(symbols(), QStringList({granted, refused, unknown}));
}

TEST_F(SettingsWindowTest, TheKeyboardReachesEverything)
{
    platform.accessibility().trusted = false;
    for (const SettingsPane pane : SettingsPanes::all()) {
        show(pane);
        EXPECT_EQ(countUnreachable(), 0) << qPrintable(SettingsPanes::rawValue(pane));
    }
    show(SettingsPane::general);
    auto *bar = window()->findChild<QScrollArea *>()->verticalScrollBar();
    bar->setValue(bar->maximum());
    auto *item = find<QAbstractButton>(Str::paneGeneral);
    item->setFocus();
    press(item, Qt::Key_Tab);
    EXPECT_EQ(window()->focusWidget(), find<Picker>(Str::interfaceLanguage));
    EXPECT_FALSE(window()->focusWidget()->visibleRegion().isEmpty());
}

TEST_F(SettingsWindowTest, KeysOpenTheMenuBarAndAreNotTyped)
{
    std::vector<std::unique_ptr<QMenu>> menus;
    menus.push_back(std::make_unique<QMenu>(QStringLiteral("Tovi")));
    QMenu *menu = menus.front().get();
    menu->addAction(QStringLiteral("About"));
    MainMenu::shared().setMenus(std::move(menus));
    show(SettingsPane::translation);
    window()->findChild<QListWidget *>()->setCurrentRow(2);
    const QList<ProviderConfig> before = Settings::shared().providers;
    QKeyEvent f10(QEvent::KeyPress, Qt::Key_F10, Qt::NoModifier);
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_T, Qt::AltModifier, QStringLiteral("t"));
    for (const Str field : {Str::model, Str::systemPrompt}) {
        for (QKeyEvent *key : {&f10, &letter}) {
            QApplication::sendEvent(find<QWidget>(field), key);
            EXPECT_EQ(QApplication::activePopupWidget(), menu);
            menu->close();
        }
    }
    EXPECT_EQ(Settings::shared().providers.get(), before);
}

TEST_F(SettingsWindowTest, NothingIsCutOffInAnyLanguage)
{
    platform.accessibility().trusted = false;
    HotKeyStatus::shared().duplicates = {HotKeyStatus::Slot::capture};
    show();
    for (const AppLanguage language : AppLanguages::all()) {
        Localization::shared().language = language;
        for (const QSize size :
             {SettingsWindowController::contentSize, SettingsWindowController::minimumSize}) {
            window()->resize(size);
            for (const SettingsPane pane : SettingsPanes::all()) {
                SCOPED_TRACE(qPrintable(AppLanguages::rawValue(language) + SettingsPanes::rawValue(pane)));
                show(pane);
                EXPECT_EQ(cutOff(), "");
                // The editor of the widest kind.
                for (auto *list : window()->findChildren<QListWidget *>()) {
                    list->setCurrentRow(list->count() - 1);
                    drainMainQueue();
                    EXPECT_EQ(cutOff(), "");
                    if (const auto *model = find<QLineEdit>(Str::model)) {
                        EXPECT_EQ(model->width(), find<QLineEdit>(Str::apiKey)->width());
                    }
                }
            }
        }
    }
}

} // namespace
} // namespace tovi
