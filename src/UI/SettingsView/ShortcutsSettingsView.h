// SPDX-License-Identifier: MIT
#pragma once

#include "HotKeyStatus.h"
#include "UI/Forms/FormView.h"

namespace tovi {

class Settings;

/// The shortcuts with what came of them, and the trigger.
class ShortcutsSettingsView : public FormView
{
    Q_OBJECT

public:
    explicit ShortcutsSettingsView(Settings &settings, QWidget *parent = nullptr);

private:
    void addShortcutRow(FormSection &section, const QString &title, HotKeyStatus::Slot slot);
};

} // namespace tovi
