// SPDX-License-Identifier: MIT
#include "UI/SettingsView/TranslationSettingsView.h"

namespace tovi {

TranslationSettingsView::TranslationSettingsView(Settings &, QWidget *parent)
    : QWidget(parent)
{}

} // namespace tovi
