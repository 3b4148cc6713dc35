// SPDX-License-Identifier: MIT
#include "UI/SettingsView/ShortcutsSettingsView.h"

#include "Localization.h"
#include "Settings.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormRow.h"
#include "UI/Forms/FormSection.h"
#include "UI/HotKeyRecorder.h"

namespace tovi {

namespace {

QString t(Str key)
{
    return Localization::shared().t(key);
}

} // namespace

ShortcutsSettingsView::ShortcutsSettingsView(Settings &settings, QWidget *parent)
    : FormView(parent)
{
    observe(settings);
    observe(HotKeyStatus::shared());
    FormSection *shortcuts = addSection(t(Str::paneShortcuts));
    addShortcutRow(*shortcuts, t(Str::captureShortcut), HotKeyStatus::Slot::capture);
    addShortcutRow(*shortcuts, t(Str::ocrShortcut), HotKeyStatus::Slot::ocr);
    addShortcutRow(*shortcuts, t(Str::menuInput), HotKeyStatus::Slot::input);
    auto *reset = new FormButton(t(Str::resetShortcuts));
    connect(reset, &QPushButton::clicked, this, [&settings] { settings.resetHotKeys(); });
    shortcuts->addHint(t(Str::shortcutsHint), reset);

    FormSection *trigger = addSection(t(Str::triggerSection));
    addToggle(*trigger, t(Str::doubleCopyShortcut), settings.enableDoubleCopy);
}

void ShortcutsSettingsView::addShortcutRow(FormSection &section, const QString &title,
                                           HotKeyStatus::Slot slot)
{
    FormRow *row = section.addRow(title, makeHotKeyRecorder(slot, nullptr));
    follow([row, slot] {
        QStringList warnings;
        if (HotKeyStatus::shared().duplicates->contains(slot))
            warnings << t(Str::hotKeyDuplicate);
        if (HotKeyStatus::shared().failed->contains(slot))
            warnings << t(Str::hotKeyInUse);
        row->setWarnings(warnings);
    });
}

} // namespace tovi
