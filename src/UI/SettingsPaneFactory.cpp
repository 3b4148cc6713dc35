// SPDX-License-Identifier: MIT
#include "UI/SettingsPaneFactory.h"

#include "UI/SettingsView/AboutSettingsView.h"
#include "UI/SettingsView/GeneralSettingsView.h"
#include "UI/SettingsView/PermissionSettingsView.h"
#include "UI/SettingsView/ShortcutsSettingsView.h"
#include "UI/SettingsView/TranslationSettingsView.h"

namespace tovi::SettingsPaneFactory {

std::unique_ptr<QWidget> view(SettingsPane pane, Settings &settings)
{
    switch (pane) {
    case SettingsPane::general:
        return std::make_unique<GeneralSettingsView>(settings);
    case SettingsPane::translation:
        return std::make_unique<TranslationSettingsView>(settings);
    case SettingsPane::shortcuts:
        return std::make_unique<ShortcutsSettingsView>(settings);
    case SettingsPane::permissions:
        return std::make_unique<PermissionSettingsView>();
    case SettingsPane::about:
        break;
    }
    return std::make_unique<AboutSettingsView>();
}

} // namespace tovi::SettingsPaneFactory
