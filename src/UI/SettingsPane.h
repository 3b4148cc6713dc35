// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace tovi {

/// The panes of the settings window, in the order of its toolbar.
enum class SettingsPane { general, translation, shortcuts, permissions, about };

namespace SettingsPanes {
const QList<SettingsPane> &all();
/// "general", "translation", ...
QString rawValue(SettingsPane pane);
/// In the interface language.
QString title(SettingsPane pane);
/// The system symbol of its toolbar item.
QString symbol(SettingsPane pane);
/// "com.brevoll.tovi.settings." and the raw value.
QString toolbarItemIdentifier(SettingsPane pane);
std::optional<SettingsPane> fromToolbarItemIdentifier(const QString &identifier);
} // namespace SettingsPanes

} // namespace tovi
