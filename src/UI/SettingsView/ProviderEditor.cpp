// SPDX-License-Identifier: MIT
#include "UI/SettingsView/ProviderEditor.h"

#include <algorithm>
#include <utility>

#include <QBoxLayout>
#include <QSignalBlocker>

#include "Endpoints.h"
#include "Localization.h"
#include "Settings.h"
#include "UI/Controls/ProviderIcon.h"
#include "UI/Controls/ProviderLogo.h"
#include "UI/Controls/SystemSymbol.h"
#include "UI/EditableTextView.h"
#include "UI/Forms/CapsuleBadge.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormRow.h"
#include "UI/Forms/FormSection.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/FormTextField.h"
#include "UI/Forms/KeyboardFocus.h"
#include "UI/Forms/Picker.h"
#include "UI/Forms/TextFrame.h"
#include "UI/Forms/ToggleSwitch.h"
#include "UI/OverlayScrollBar.h"
#include "UI/SettingsView/ProviderTestRow.h"
#include "UI/SettingsView/ProviderTestState.h"

namespace tovi {

namespace {

constexpr int margin = 12;
constexpr int promptHeight = 132;

QString t(Str key)
{
    return Localization::shared().t(key);
}

const QString logoPrefix = QStringLiteral("logo:");

QString iconDisplayName(const QString &identifier)
{
    return identifier.startsWith(logoPrefix) ? ProviderLogo::displayName(identifier.mid(logoPrefix.size()))
                                             : identifier;
}

} // namespace

ProviderEditor::ProviderEditor(Settings &settings, const QUuid &providerID,
                               std::shared_ptr<ProviderTest> test, QWidget *parent)
    : FormView(parent)
    , m_settings(settings)
    , m_providerID(providerID)
    , m_test(std::move(test))
{
    widget()->layout()->setContentsMargins(margin, margin, margin - OverlayScrollBar::width, margin);
    observe(settings);
    observe(*m_test);
    addIdentity();
    addChat();
    addPrompt();
    addDescription(ProviderKind::google, t(Str::googleDescription));
    addDescription(ProviderKind::apple, t(Str::appleDescription));
    addTest();
}

QString ProviderEditor::kindTitle(ProviderKind kind)
{
    switch (kind) {
    case ProviderKind::google:
        return t(Str::providerTypeGoogle);
    case ProviderKind::apple:
        return t(Str::providerTypeApple);
    case ProviderKind::openAI:
        break;
    }
    return t(Str::providerTypeOpenAI);
}

ProviderConfig ProviderEditor::provider() const
{
    return m_settings.provider(m_providerID).value_or(ProviderConfig::makeGoogle());
}

void ProviderEditor::edit(const std::function<void(ProviderConfig &)> &change)
{
    QList<ProviderConfig> list = m_settings.providers;
    const auto config = std::ranges::find(list, m_providerID, &ProviderConfig::id);
    if (config == list.end())
        return;
    change(*config);
    m_settings.providers = list;
}

void ProviderEditor::setIcon(const QString &identifier)
{
    edit([&](ProviderConfig &config) { config.iconName = identifier; });
}

void ProviderEditor::editName()
{
    m_name->setFocus(Qt::OtherFocusReason);
    m_name->selectAll();
}

void ProviderEditor::runTest()
{
    if (m_test->state->kind != ProviderTestState::Kind::running)
        ProviderTest::run(m_test, provider());
}

void ProviderEditor::addIdentity()
{
    FormSection *section = addSection();
    m_name = new FormTextField;
    addText(*section, t(Str::providerName), &ProviderConfig::name, m_name);

    auto *kind = new Picker;
    for (const ProviderKind each : ProviderKinds::all())
        kind->addEntry(kindTitle(each), ProviderKinds::rawValue(each));
    section->addRow(t(Str::providerType), kind);
    kind->onPick([this](const QString &tag) {
        edit([&](ProviderConfig &config) {
            config.kind = ProviderKinds::fromRawValue(tag).value_or(config.kind);
        });
    });

    auto *icon = new Picker;
    for (const auto &[logo, title] : ProviderLogo::displayNames()) {
        const IconImage image = ProviderLogo::image(logo);
        icon->addEntry(title, logoPrefix + logo,
                       image ? image : SystemSymbol::image(QStringLiteral("cloud")));
    }
    section->addRow(t(Str::providerIcon), icon);
    icon->onPick([this](const QString &tag) { setIcon(tag); });

    auto *badge = new CapsuleBadge(t(Str::providerDefaultBadge));
    auto *setDefault = new FormButton(t(Str::providerSetDefault));
    FormRow *row = section->addRow(QString(), nullptr);
    row->addControl(badge);
    row->addControl(setDefault);
    connect(setDefault, &QPushButton::clicked, this, [this] { m_settings.currentProviderID = m_providerID; });

    follow([this, kind, icon, badge, setDefault] {
        const ProviderConfig config = provider();
        const bool isBuiltIn = config.isBuiltIn.value_or(false);
        m_name->setEnabled(!isBuiltIn);
        kind->setEnabled(!isBuiltIn);
        kind->setTag(ProviderKinds::rawValue(config.kind));
        const QString identifier = config.iconIdentifier();
        icon->setTag(identifier, iconDisplayName(identifier), ProviderIcon::image(identifier));
        const bool isDefault = m_settings.currentProviderID.get() == m_providerID;
        if (isDefault && setDefault->hasFocus() && onKeyboardLeft)
            onKeyboardLeft(KeyboardFocus::isShownFor(setDefault) ? Qt::TabFocusReason : Qt::OtherFocusReason);
        badge->setVisible(isDefault);
        setDefault->setVisible(!isDefault);
    });
}

void ProviderEditor::addChat()
{
    FormSection *section = addSectionOf(ProviderKind::openAI, t(Str::providerTypeOpenAI));
    addText(*section, t(Str::baseURL), &ProviderConfig::baseURL,
            new FormTextField(Endpoints::openAIBaseURL()));
    addText(*section, t(Str::model), &ProviderConfig::model,
            new FormTextField(QStringLiteral("gpt-4o-mini")));
    addText(*section, t(Str::apiKey), &ProviderConfig::apiKey,
            new FormTextField(QStringLiteral("sk-…"), FormTextField::Content::secret));
    auto *fallback = new ToggleSwitch;
    section->addRow(t(Str::fallbackToGoogle), fallback);
    connect(fallback, &ToggleSwitch::toggled, this, [this](bool checked) {
        edit([&](ProviderConfig &config) { config.fallbackToGoogle = checked; });
    });
    follow([this, fallback] {
        const QSignalBlocker blocker(fallback);
        fallback->setChecked(provider().fallbackToGoogle);
        fallback->update();
    });
}

void ProviderEditor::addPrompt()
{
    FormSection *section = addSectionOf(ProviderKind::openAI, t(Str::systemPrompt));
    auto *prompt = new EditableTextView;
    prompt->setFont(FormStyle::font(12));
    prompt->setAccessibleName(t(Str::systemPrompt));
    section->addWidget(new TextFrame(prompt, promptHeight));
    connect(prompt, &EditableTextView::submitted, prompt, [prompt] {
        prompt->insertPlainText(QStringLiteral("\n"));
        prompt->ensureCursorVisible();
    });
    connect(prompt, &EditableTextView::edited, this, [this](const QString &text) {
        edit([&](ProviderConfig &config) { config.systemPrompt = text; });
    });
    follow([this, prompt] { prompt->setText(provider().systemPrompt); });

    auto *reset = new FormButton(t(Str::resetDefault));
    connect(reset, &QPushButton::clicked, this, [this] { m_settings.resetSystemPrompt(m_providerID); });
    section->addHint(t(Str::systemPromptHint), reset);
}

void ProviderEditor::addDescription(ProviderKind kind, const QString &text)
{
    addSectionOf(kind, kindTitle(kind))->addWidget(new FormLabel(FormLabel::Role::title, text));
}

void ProviderEditor::addTest()
{
    auto *row = new ProviderTestRow;
    addWidget(row);
    connect(row->button(), &QPushButton::clicked, this, [this] { runTest(); });
    follow([this, row, last = m_test->state.get()]() mutable {
        const bool isOutcome =
            std::exchange(last, m_test->state) != last && last.kind != ProviderTestState::Kind::running;
        const bool wasSeen = !row->button()->visibleRegion().isEmpty();
        row->show(last);
        if (isOutcome && wasSeen)
            reveal(*row);
    });
}

void ProviderEditor::addText(FormSection &section, const QString &title, QString ProviderConfig::*member,
                             FormTextField *field)
{
    section.addRow(title, field);
    field->onEdit([this, member](const QString &value) {
        edit([&](ProviderConfig &config) { config.*member = value; });
    });
    follow([this, field, member] { field->showText(provider().*member); });
}

FormSection *ProviderEditor::addSectionOf(ProviderKind kind, const QString &title)
{
    FormSection *section = addSection(title);
    follow([this, kind, section] { section->setVisible(provider().kind == kind); });
    return section;
}

} // namespace tovi
