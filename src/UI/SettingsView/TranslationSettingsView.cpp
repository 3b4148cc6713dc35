// SPDX-License-Identifier: MIT
#include "UI/SettingsView/TranslationSettingsView.h"

#include <algorithm>
#include <utility>

#include <QAccessibleWidget>
#include <QBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QPointer>

#include "Endpoints.h"
#include "Localization.h"
#include "Platform/DispatchQueue.h"
#include "Settings.h"
#include "UI/Controls/IconButton.h"
#include "UI/Controls/MenuPresenter.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"
#include "UI/SettingsView/ProviderEditor.h"
#include "UI/SettingsView/ProviderList.h"
#include "UI/SettingsView/ProviderTestState.h"

namespace tovi {

namespace {

constexpr int sidebarWidth = 190;
constexpr int widestSidebar = 236; ///< in the narrowest pane
constexpr int narrowestPane = 520;
constexpr int margin = 8;

QString t(Str key)
{
    return Localization::shared().t(key);
}

/// With the open menu as its last child: assistive programs do not come to menus of no window.
class AccessiblePane final : public QAccessibleWidget
{
public:
    explicit AccessiblePane(TranslationSettingsView *pane)
        : QAccessibleWidget(pane, QAccessible::Client)
    {}

    int childCount() const override { return QAccessibleWidget::childCount() + (menu() ? 1 : 0); }
    QAccessibleInterface *child(int index) const override
    {
        return menu() && index == QAccessibleWidget::childCount()
                   ? QAccessible::queryAccessibleInterface(menu())
                   : QAccessibleWidget::child(index);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child && menu() && child->object() == menu() ? QAccessibleWidget::childCount()
                                                            : QAccessibleWidget::indexOfChild(child);
    }

private:
    QMenu *menu() const { return static_cast<TranslationSettingsView *>(widget())->menu(); }
};

QAccessibleInterface *accessibleFor(const QString &, QObject *object)
{
    auto *pane = qobject_cast<TranslationSettingsView *>(object);
    return pane ? new AccessiblePane(pane) : nullptr;
}

/// A thin line along one side.
class Line final : public QWidget
{
public:
    explicit Line(Qt::Orientation orientation)
    {
        if (orientation == Qt::Horizontal)
            setFixedHeight(1);
        else
            setFixedWidth(1);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const double line = FormStyle::hairline(*this);
        const QSizeF size(width() == 1 ? line : width(), height() == 1 ? line : height());
        QPainter(this).fillRect(QRectF(QPointF(), size), SystemColor::separator(palette()));
    }
};

} // namespace

TranslationSettingsView::TranslationSettingsView(Settings &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_test(std::make_shared<ProviderTest>())
    , m_columns(new QHBoxLayout(this))
{
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(accessibleFor), true);
    m_columns->setContentsMargins(0, 0, 0, 0);
    m_columns->setSpacing(0);
    m_columns->addWidget(makeSidebar());
    m_columns->addWidget(new Line(Qt::Vertical));
    m_observed = settings.onWillChange([this] {
        if (std::exchange(m_isRefreshPending, true))
            return;
        asyncOnMain([self = QPointer(this)] {
            if (self)
                self->refresh();
        });
    });
    select(settings.currentProviderID);
}

void TranslationSettingsView::addProvider(ProviderKind kind)
{
    ProviderConfig config;
    config.id = QUuid::createUuid();
    config.name = ProviderEditor::kindTitle(kind);
    config.kind = kind;
    config.systemPrompt = ProviderConfig::defaultSystemPrompt();
    config.fallbackToGoogle = true;
    if (kind == ProviderKind::openAI) {
        config.baseURL = Endpoints::openAIBaseURL();
        config.model = QStringLiteral("gpt-4o-mini");
    }
    m_settings.addProvider(config);
    select(config.id);
    m_settings.currentProviderID = config.id;
    m_editor->editName();
}

void TranslationSettingsView::duplicate(const ProviderConfig &config)
{
    ProviderConfig copy = config;
    copy.id = QUuid::createUuid();
    copy.name = config.displayName() + QStringLiteral(" Copy");
    copy.isBuiltIn = false;
    m_settings.addProvider(copy);
    select(copy.id);
    m_editor->editName();
}

bool TranslationSettingsView::canRemoveSelected() const
{
    return m_selectedProviderID && canRemove(*m_selectedProviderID);
}

void TranslationSettingsView::removeSelected()
{
    if (!m_selectedProviderID || m_settings.providers->size() < 2)
        return;
    m_settings.removeProvider(*m_selectedProviderID);
    select(m_settings.currentProvider().id);
}

QWidget *TranslationSettingsView::makeSidebar()
{
    m_list = new ProviderList;
    m_list->onSelect = [this](const QUuid &id) { select(id); };
    m_list->onMenu = [this](const QUuid &id, const QPoint &at) { showMenu(id, at); };

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    const auto addButton = [&](const char *symbol, Str help, const std::function<void()> &action) {
        auto *button = new IconButton;
        button->setIcon(QLatin1String(symbol), FormStyle::bodySize);
        button->setHelp(t(help));
        connect(button, &QAbstractButton::clicked, this, action);
        buttons->addWidget(button);
        return button;
    };
    addButton("plus", Str::providerAdd, [this] { addProvider(ProviderKind::openAI); });
    m_remove = addButton("minus", Str::providerRemove, [this] { removeSelected(); });
    addButton("plus.square.on.square", Str::providerDuplicate, [this] {
        if (const auto config = m_settings.provider(m_selectedProviderID.value_or(QUuid())))
            duplicate(*config);
    });
    buttons->addStretch(1);

    m_sidebar = new QWidget;
    auto *column = new QVBoxLayout(m_sidebar);
    // The scroll bar's place is part of the margin.
    column->setContentsMargins(margin, margin, 0, margin);
    column->setSpacing(6);
    column->addWidget(m_list, 1);
    auto *below = new QVBoxLayout;
    below->setContentsMargins(0, 0, margin, 0);
    below->setSpacing(6);
    below->addWidget(new Line(Qt::Horizontal));
    below->addLayout(buttons);
    column->addLayout(below);
    return m_sidebar;
}

void TranslationSettingsView::resizeEvent(QResizeEvent *event)
{
    // Room for the name that new engines have, as far as the editor can spare it.
    const int wanted = ProviderList::widthFor(ProviderEditor::kindTitle(ProviderKind::openAI)) + margin;
    const int widest = widestSidebar + std::max(0, (width() - narrowestPane) / 2);
    m_sidebar->setFixedWidth(std::clamp(wanted, sidebarWidth, widest));
    QWidget::resizeEvent(event);
}

void TranslationSettingsView::showMenu(const QUuid &id, const QPoint &at)
{
    auto menu = MenuPresenter::makeMenu();
    const auto add = [&](Str title, bool isEnabled, const std::function<void()> &action) {
        QAction *item = menu->addAction(MenuPresenter::literalTitle(t(title)), this, action);
        item->setEnabled(isEnabled);
    };
    add(Str::providerSetDefault, m_settings.currentProviderID.get() != id,
        [this, id] { m_settings.currentProviderID = id; });
    add(Str::providerDuplicate, true, [this, id] {
        if (const auto config = m_settings.provider(id))
            duplicate(*config);
    });
    menu->addSeparator();
    add(Str::providerRemove, canRemove(id), [this, id] { m_settings.removeProvider(id); });
    m_menu = MenuPresenter::popUp(std::move(menu), *m_list, at);
}

QMenu *TranslationSettingsView::menu() const
{
    return m_menu && m_menu->isVisible() ? m_menu : nullptr;
}

bool TranslationSettingsView::canRemove(const QUuid &id) const
{
    const auto config = m_settings.provider(id);
    return config && !config->isBuiltIn.value_or(false) && m_settings.providers->size() > 1;
}

void TranslationSettingsView::select(const QUuid &id)
{
    if (m_selectedProviderID != id) {
        m_selectedProviderID = id;
        if (ProviderEditor *old = std::exchange(m_editor, new ProviderEditor(m_settings, id, m_test))) {
            m_columns->removeWidget(old);
            // What is hidden hands the keyboard to whatever comes next in the window.
            if (old->isAncestorOf(window()->focusWidget()))
                m_list->setFocus(Qt::OtherFocusReason);
            old->hide();
            old->deleteLater();
        }
        m_editor->onKeyboardLeft = [this](Qt::FocusReason reason) { m_list->setFocus(reason); };
        m_columns->addWidget(m_editor, 1);
        m_editor->show(); // in this turn: the old one has gone
    }
    refresh();
}

void TranslationSettingsView::refresh()
{
    m_isRefreshPending = false;
    m_list->showProviders(m_settings.providers, m_settings.currentProviderID, m_selectedProviderID);
    if (!canRemoveSelected() && m_remove->hasFocus())
        m_list->setFocus(Qt::TabFocusReason);
    m_remove->setEnabled(canRemoveSelected());
}

} // namespace tovi
