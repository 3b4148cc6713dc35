// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QWidget>

#include "UI/SettingsPane.h"

namespace tovi {

class Settings;

namespace SettingsPaneFactory {
/// The content of a pane, with the texts of the present interface language.
std::unique_ptr<QWidget> view(SettingsPane pane, Settings &settings);
} // namespace SettingsPaneFactory

} // namespace tovi
