// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "BundleInformation.h"
#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/Platform.h"
#include "Settings.h"
#include "UI/AboutPanel.h"
#include "UI/Controls/MenuPresenter.h"
#include "UI/MainMenu.h"
#include "UI/SettingsWindowController.h"
#include "UI/StatusItemIcon.h"
#include "UI/TextEditing.h"
#include "UI/UpdateWindow.h"

namespace tovi {

namespace {

constexpr QKeyCombination commandComma = Qt::CTRL | Qt::Key_Comma;
constexpr QKeyCombination commandQ = Qt::CTRL | Qt::Key_Q;
constexpr QKeyCombination commandH = Qt::CTRL | Qt::Key_H;
constexpr QKeyCombination commandOptionH = Qt::CTRL | Qt::ALT | Qt::Key_H;

QString title(Str key)
{
    return MenuPresenter::literalTitle(Localization::shared().t(key));
}

QString titleWithKeys(Str key, const HotKey &keys)
{
    return title(key) + QStringLiteral("    ") + MenuPresenter::literalTitle(keys.displayString());
}

/// Sends an editing command to whatever has the focus.
void edit(TextEditing editing)
{
    if (QWidget *firstResponder = MainMenu::shared().firstResponder())
        perform(editing, *firstResponder);
}

} // namespace

void AppDelegate::setupMainMenu()
{
    std::vector<std::unique_ptr<QMenu>> menus;
    menus.push_back(makeApplicationMenu());
    menus.push_back(makeEditMenu());
    MainMenu::shared().setMenus(std::move(menus));
}

std::unique_ptr<QMenu> AppDelegate::makeApplicationMenu()
{
    auto menu = MenuPresenter::makeMenu(BundleInformation::name());
    const auto add = [this, &menu](Str key, auto action, std::optional<QKeyCombination> keys = {}) {
        QAction *item = menu->addAction(title(key), this, action);
        if (keys) {
            item->setShortcut(*keys);
            item->setShortcutContext(Qt::ApplicationShortcut);
        }
        return item;
    };
    Application &application = Platform::current().application();
    add(Str::menuAbout, &AboutPanel::orderFront);
    menu->addSeparator();
    add(Str::menuSettings, &AppDelegate::openSettings, commandComma);
    add(Str::menuCheckUpdates, &AppDelegate::checkForUpdates)
        ->setEnabled(BundleInformation::canLookForUpdates());
    menu->addSeparator();
    add(
        Str::menuHide, [&application] { application.hide(); }, commandH);
    add(
        Str::menuHideOthers, [&application] { application.hideOtherApplications(); }, commandOptionH);
    add(Str::menuShowAll, [&application] { application.unhideAllApplications(); });
    menu->addSeparator();
    add(Str::menuQuit, &AppDelegate::quit, commandQ);
    return menu;
}

std::unique_ptr<QMenu> AppDelegate::makeEditMenu()
{
    struct Entry
    {
        Str title;
        TextEditing editing;
        QKeySequence keys;
    };
    const Entry entries[] = {
        {Str::menuUndo, TextEditing::undo, Qt::CTRL | Qt::Key_Z},
        {Str::menuRedo, TextEditing::redo, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
        {Str::menuCut, TextEditing::cut, Qt::CTRL | Qt::Key_X},
        {Str::menuCopy, TextEditing::copy, Qt::CTRL | Qt::Key_C},
        {Str::menuPaste, TextEditing::paste, Qt::CTRL | Qt::Key_V},
        {Str::menuDelete, TextEditing::remove, {}},
        {Str::menuSelectAll, TextEditing::selectAll, Qt::CTRL | Qt::Key_A},
    };
    auto menu = MenuPresenter::makeMenu(Localization::shared().t(Str::menuEdit));
    for (const Entry &entry : entries) {
        QAction *item =
            menu->addAction(title(entry.title), this, [editing = entry.editing] { edit(editing); });
        item->setShortcut(entry.keys);
        // What cannot be done is grey while the menu is open; its keys ask the focus themselves.
        connect(menu.get(), &QMenu::aboutToShow, item, [item, editing = entry.editing] {
            const QWidget *focus = MainMenu::shared().firstResponder();
            item->setEnabled(focus && canPerform(editing, *focus));
        });
        connect(menu.get(), &QMenu::aboutToHide, item, [item] {
            QMetaObject::invokeMethod(
                item, [item] { item->setEnabled(true); }, Qt::QueuedConnection);
        });
        if (entry.editing == TextEditing::redo)
            menu->addSeparator();
    }
    return menu;
}

void AppDelegate::setupStatusItem()
{
    m_statusMenu = MenuPresenter::makeMenu();
    connect(m_statusMenu.get(), &QMenu::aboutToShow, this, [this] { rebuildMenu(m_statusMenu.get()); });
    rebuildMenu(m_statusMenu.get());
    m_statusBar = Platform::current().application().watchStatusBar([this] { statusBarChanged(); });
    statusBarChanged();
}

void AppDelegate::statusBarChanged()
{
    // The toolkit decides once, with the first item, how items are shown; so there is none before the desktop
    // has a place for it.
    const Application::StatusBar bar = Platform::current().application().statusBar();
    if (!m_statusItem && !bar.isThere)
        return;
    const bool isNew = !m_statusItem;
    if (isNew)
        m_statusItem = std::make_unique<QSystemTrayIcon>();
    m_statusItem->setIcon(statusItemIcon(bar.isDark));
    if (!isNew)
        return;
    m_statusItem->setToolTip(Localization::shared().t(Str::aboutSubtitle));
    m_statusItem->setContextMenu(m_statusMenu.get());
    // The toolkit opens the menu by the right button only.
    connect(m_statusItem.get(), &QSystemTrayIcon::activated, m_statusMenu.get(),
            [menu = m_statusMenu.get()](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    menu->popup(QCursor::pos());
            });
    m_statusItem->show();
}

void AppDelegate::rebuildMenu(QMenu *menu)
{
    const Settings &settings = Settings::shared();
    menu->clear();
    // Clearing leaves the submenus alive.
    qDeleteAll(menu->findChildren<QMenu *>(Qt::FindDirectChildrenOnly));
    menu->addAction(titleWithKeys(Str::menuCapture, settings.captureHotKey), this,
                    &AppDelegate::triggerCapture);
    menu->addAction(titleWithKeys(Str::menuOCR, settings.ocrHotKey), this, &AppDelegate::triggerOCR);
    menu->addAction(titleWithKeys(Str::menuInput, settings.inputHotKey), this,
                    &AppDelegate::triggerInputTranslation);
    menu->addSeparator();
    menu->addAction(title(Str::menuSettings), this, &AppDelegate::openSettings)->setShortcut(commandComma);
    menu->addAction(title(Str::menuCheckUpdates), this, &AppDelegate::checkForUpdates)
        ->setEnabled(BundleInformation::canLookForUpdates());
    menu->addSeparator();
    setupLanguageMenu(MenuPresenter::addSubmenu(*menu, Localization::shared().t(Str::menuTranslateTo)));
    menu->addSeparator();
    menu->addAction(title(Str::menuQuit), this, &AppDelegate::quit)->setShortcut(commandQ);
}

void AppDelegate::setupLanguageMenu(QMenu *menu)
{
    for (const TargetLanguage language : TargetLanguages::all()) {
        const QString code = TargetLanguages::rawValue(language);
        QAction *action = menu->addAction(TargetLanguages::ownName(code));
        action->setData(code);
        action->setCheckable(true);
        action->setChecked(code == Settings::shared().targetLanguage.get());
        connect(action, &QAction::triggered, this, [this, code] { selectLanguage(code); });
    }
}

void AppDelegate::selectLanguage(const QString &code)
{
    Settings::shared().targetLanguage = code;
}

void AppDelegate::openSettings()
{
    SettingsWindowController::shared().show();
}

void AppDelegate::checkForUpdates()
{
    UpdateWindow::checkForUpdates();
}

void AppDelegate::quit()
{
    Platform::current().application().terminate();
}

} // namespace tovi
