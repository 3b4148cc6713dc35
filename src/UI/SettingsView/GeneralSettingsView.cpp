// SPDX-License-Identifier: MIT
#include "UI/SettingsView/GeneralSettingsView.h"

#include "Localization.h"
#include "Settings.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormRow.h"
#include "UI/Forms/FormSection.h"
#include "UI/Forms/Picker.h"

namespace tovi {

namespace {

QString t(Str key)
{
    return Localization::shared().t(key);
}

} // namespace

GeneralSettingsView::GeneralSettingsView(Settings &settings, QWidget *parent)
    : FormView(parent)
    , m_settings(settings)
{
    observe(m_settings);
    addGeneralSection();
    addTranslationSection();
    FormSection *trigger = addSection(t(Str::triggerSection));
    addToggle(*trigger, t(Str::doubleCopyShortcut), m_settings.enableDoubleCopy);
    addPanelSection();
    addPipelineSection();
    addOCRSection();
}

void GeneralSettingsView::addGeneralSection()
{
    FormSection *section = addSection(t(Str::paneGeneral));

    // Not on addPicker(): the language is no text, and a change of it replaces this view.
    auto *language = new Picker;
    for (const AppLanguage choice : AppLanguages::all()) {
        const QString title =
            choice == AppLanguage::system ? t(Str::systemDefault) : AppLanguages::displayName(choice);
        language->addEntry(title, AppLanguages::rawValue(choice));
    }
    language->setTag(AppLanguages::rawValue(Localization::shared().language));
    language->onPick(
        [](const QString &tag) { Localization::shared().language = AppLanguages::fromRawValue(tag); });
    section->addRow(t(Str::interfaceLanguage), language);

    addPicker(*section, t(Str::appearance),
              {{t(Str::appearanceSystem), AppearanceMode::system},
               {t(Str::appearanceLight), AppearanceMode::light},
               {t(Str::appearanceDark), AppearanceMode::dark}},
              m_settings.appearance);
    FormRow *launch = addToggle(*section, t(Str::launchAtLogin), m_settings.launchAtLogin);
    follow([this, launch] {
        const auto &message = m_settings.launchAtLoginMessage.get();
        launch->setWarnings(message ? QStringList{*message} : QStringList());
    });
}

void GeneralSettingsView::addTranslationSection()
{
    FormSection *section = addSection(t(Str::paneTranslation));
    QList<Choice> languages;
    for (const TargetLanguage language : TargetLanguages::all()) {
        const QString code = TargetLanguages::rawValue(language);
        languages.append({TargetLanguages::ownName(code), code});
    }
    addPicker(*section, t(Str::targetLanguage), languages, m_settings.targetLanguage);
    addToggle(*section, t(Str::dictionaryToggle), m_settings.enableDictionary);
}

void GeneralSettingsView::addPanelSection()
{
    FormSection *section = addSection(t(Str::panelSection));
    addPicker(*section, t(Str::windowPosition),
              {{t(Str::positionFollowMouse), WindowPosition::followMouse},
               {t(Str::positionCenter), WindowPosition::center}},
              m_settings.windowPosition);
    addSlider(*section, t(Str::widthLabel), {.minimum = 300, .maximum = 640, .step = 10},
              m_settings.resultPanelWidth);
    addSlider(*section, t(Str::fontSize), {.minimum = 11, .maximum = 26, .step = 1},
              m_settings.resultFontSize);
}

void GeneralSettingsView::addPipelineSection()
{
    FormSection *section = addSection(t(Str::pipelineSection));
    section->addHint(t(Str::pipelineHint));
    section->addRow(t(Str::stepAccessibility), nullptr)
        ->addControl(new FormLabel(FormLabel::Role::value, t(Str::alwaysEnabled)));
    addToggle(*section, t(Str::stepBrowser), m_settings.browserScriptEnabled);
    addToggle(*section, t(Str::stepClipboard), m_settings.clipboardFallback);
    addToggle(*section, t(Str::stepOCR), m_settings.ocrEnabled);
    addToggle(*section, t(Str::preferMenuCopy), m_settings.preferMenuBarCopy);
    addToggle(*section, t(Str::menuRestoreClipboard), m_settings.restoreClipboard);
    section->addHint(t(Str::clipboardNote));
}

void GeneralSettingsView::addOCRSection()
{
    FormSection *section = addSection(t(Str::ocrSection));
    FormRow *region = addToggle(*section, t(Str::ocrRegionToggle), m_settings.ocrRegionSelection);
    follow([this, region] {
        region->setCaption(
            t(m_settings.ocrRegionSelection ? Str::ocrRegionDescription : Str::ocrPointDescription));
    });
}

} // namespace tovi
