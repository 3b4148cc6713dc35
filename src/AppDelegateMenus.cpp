// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/Platform.h"
#include "Settings.h"

namespace tovi {

namespace {

/// A menu title as it stands: an ampersand is no mnemonic mark.
QString title(Str key)
{
    return Localization::shared().t(key).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString titleWithKeys(Str key, const HotKey &keys)
{
    return title(key) + QStringLiteral("    ") +
           keys.displayString().replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

void AppDelegate::setupMainMenu()
{
    // The menu bar belongs to the program's regular windows; there is none as long as only panels are shown.
}

void AppDelegate::setupStatusItem()
{
    m_statusMenu = std::make_unique<QMenu>();
    connect(m_statusMenu.get(), &QMenu::aboutToShow, this, [this] { rebuildMenu(m_statusMenu.get()); });
    rebuildMenu(m_statusMenu.get());
    m_statusItem = std::make_unique<QSystemTrayIcon>(QIcon(QStringLiteral(":/tovi/MenuBarIcon.svg")));
    m_statusItem->setToolTip(Localization::shared().t(Str::aboutSubtitle));
    m_statusItem->setContextMenu(m_statusMenu.get());
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
    setupLanguageMenu(menu->addMenu(title(Str::menuTranslateTo)));
    menu->addSeparator();
    menu->addAction(title(Str::menuQuit), this, &AppDelegate::quit);
}

void AppDelegate::setupLanguageMenu(QMenu *menu)
{
    for (const TargetLanguage language : TargetLanguages::all()) {
        const QString code = TargetLanguages::rawValue(language);
        QAction *action = menu->addAction(TargetLanguages::ownName(code));
        action->setCheckable(true);
        action->setChecked(code == Settings::shared().targetLanguage.get());
        connect(action, &QAction::triggered, this, [code] { Settings::shared().targetLanguage = code; });
    }
}

void AppDelegate::quit()
{
    Platform::current().application().terminate();
}

} // namespace tovi
