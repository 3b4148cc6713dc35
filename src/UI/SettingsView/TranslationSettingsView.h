// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovi {

class Settings;

/// The engines and their editor.
class TranslationSettingsView : public QWidget
{
    Q_OBJECT

public:
    explicit TranslationSettingsView(Settings &settings, QWidget *parent = nullptr);
};

} // namespace tovi
