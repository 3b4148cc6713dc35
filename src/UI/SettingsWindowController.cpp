// SPDX-License-Identifier: MIT
#include "UI/SettingsWindowController.h"

#include <QAbstractScrollArea>
#include <QBoxLayout>
#include <QScrollBar>

#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Settings.h"
#include "UI/Forms/KeyboardFocus.h"
#include "UI/RegularWindow.h"
#include "UI/SettingsPaneFactory.h"
#include "UI/SettingsToolbar.h"

namespace tovi {

namespace {

int scrollPosition(QWidget *pane)
{
    const auto *area = qobject_cast<QAbstractScrollArea *>(pane);
    return area ? area->verticalScrollBar()->value() : 0;
}

/// The place of the widget with the keyboard among a pane's; -1 when it is elsewhere.
qsizetype focusPosition(const QWidget *pane)
{
    return pane->findChildren<QWidget *>().indexOf(pane->window()->focusWidget());
}

} // namespace

SettingsWindowController &SettingsWindowController::shared()
{
    return Platform::current().shared<SettingsWindowController>();
}

SettingsWindowController::SettingsWindowController()
    : m_languageObserver(Platform::current().notificationCenter().observe(
          Localization::languageChangedNotification, [this](const QVariantMap &) { languageChanged(); }))
{}

SettingsWindowController::~SettingsWindowController()
{
    // The end of the program: there is no later turn of the main queue.
    delete m_window.release();
}

void SettingsWindowController::DeleteLater::operator()(QWidget *window) const
{
    window->deleteLater();
}

void SettingsWindowController::show()
{
    Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Regular);
    if (!m_window)
        makeWindow();
    m_window->makeKeyAndOrderFront();
}

void SettingsWindowController::makeWindow()
{
    m_window.reset(new RegularWindow(RegularWindow::Style::resizable));
    m_window->onClose = [this] { windowWillClose(); };
    m_window->setWindowTitle(Localization::shared().t(Str::settingsWindowTitle));
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_toolbar = new SettingsToolbar([this](const QString &identifier) { toolbarItemClicked(identifier); });
    column->addWidget(m_toolbar);
    m_hostingView = new QWidget;
    auto *hosting = new QVBoxLayout(m_hostingView);
    hosting->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_hostingView, 1);
    m_window->setCentralWidget(content);
    m_window->setMinimumSize(minimumSize);
    m_window->resize(contentSize);
    select(m_selectedPane);
}

void SettingsWindowController::toolbarItemClicked(const QString &identifier)
{
    if (const auto pane = SettingsPanes::fromToolbarItemIdentifier(identifier))
        select(*pane);
}

void SettingsWindowController::select(SettingsPane pane)
{
    m_selectedPane = pane;
    if (!m_window)
        return;
    showPane();
    m_toolbar->setSelectedItem(SettingsPanes::toolbarItemIdentifier(pane));
}

void SettingsWindowController::showPane()
{
    QWidget *old = m_pane;
    m_pane = SettingsPaneFactory::view(m_selectedPane, Settings::shared()).release();
    m_hostingView->layout()->addWidget(m_pane);
    if (!old)
        return;
    // One of its controls may be what brought us here.
    m_hostingView->layout()->removeWidget(old);
    old->hide();
    old->deleteLater();
}

void SettingsWindowController::windowWillClose()
{
    m_toolbar = nullptr;
    m_hostingView = nullptr;
    m_pane = nullptr;
    m_window.reset();
    Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Accessory);
}

void SettingsWindowController::languageChanged()
{
    if (!m_window)
        return;
    m_window->setWindowTitle(Localization::shared().t(Str::settingsWindowTitle));
    m_toolbar->relabel();
    // Whoever goes through the languages by the arrow keys stays where he is.
    const qsizetype focus = focusPosition(m_pane);
    const auto reason =
        KeyboardFocus::isShownFor(m_window->focusWidget()) ? Qt::TabFocusReason : Qt::OtherFocusReason;
    const int scrolled = scrollPosition(m_pane);
    showPane();
    if (auto *area = qobject_cast<QAbstractScrollArea *>(m_pane.get())) {
        area->ensurePolished();
        m_hostingView->layout()->activate();
        area->verticalScrollBar()->setValue(scrolled);
    }
    if (const auto widgets = m_pane->findChildren<QWidget *>(); focus >= 0 && focus < widgets.size())
        widgets.at(focus)->setFocus(reason);
}

} // namespace tovi
