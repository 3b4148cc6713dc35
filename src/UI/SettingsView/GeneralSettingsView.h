// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Forms/FormView.h"

namespace tovi {

class Settings;

/// Languages, appearance, login item, trigger, result panel and the ways of capturing.
class GeneralSettingsView : public FormView
{
    Q_OBJECT

public:
    explicit GeneralSettingsView(Settings &settings, QWidget *parent = nullptr);

private:
    void addGeneralSection();
    void addTranslationSection();
    void addPanelSection();
    void addPipelineSection();
    void addOCRSection();

    Settings &m_settings;
};

} // namespace tovi
