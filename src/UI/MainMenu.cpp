// SPDX-License-Identifier: MIT
#include "UI/MainMenu.h"

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QMenuBar>

#include "Platform/Platform.h"

namespace tovi {

MainMenu &MainMenu::shared()
{
    return Platform::current().shared<MainMenu>();
}

MainMenu::MainMenu()
{
    QCoreApplication::instance()->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *focus) {
        if (focus && !qobject_cast<QMenuBar *>(focus))
            m_lastFocus = focus;
    });
}

MainMenu::~MainMenu() = default;

void MainMenu::install(QMainWindow &window)
{
    std::erase_if(m_bars, [](const auto &bar) { return !bar; });
    QMenuBar *bar = window.menuBar();
    m_bars.emplace_back(bar);
    fill(*bar);
}

void MainMenu::setMenus(std::vector<std::unique_ptr<QMenu>> menus)
{
    for (auto &menu : std::exchange(m_menus, std::move(menus)))
        menu.release()->deleteLater(); // one of its actions may be what asks for it
    for (const auto &bar : m_bars) {
        if (bar) {
            bar->clear();
            fill(*bar);
        }
    }
    for (QWidget *window : QApplication::topLevelWidgets()) {
        QEvent shown(QEvent::Show);
        if (window->isVisible())
            eventFilter(window, &shown);
    }
}

QWidget *MainMenu::firstResponder() const
{
    QWidget *focus = QApplication::focusWidget();
    if (!qobject_cast<QMenuBar *>(focus))
        return focus;
    return m_lastFocus && m_lastFocus->window() == focus->window() ? m_lastFocus.get() : nullptr;
}

void MainMenu::fill(QMenuBar &bar)
{
    for (const auto &menu : m_menus)
        bar.addMenu(menu.get());
}

bool MainMenu::eventFilter(QObject *receiver, QEvent *event)
{
    if (event->type() != QEvent::Show || !receiver->isWidgetType())
        return false;
    auto *window = static_cast<QWidget *>(receiver);
    const Qt::WindowType type = window->windowType();
    if (!window->isWindow() || (type != Qt::Window && type != Qt::Dialog && type != Qt::Tool))
        return false;
    // A key equivalent works where its action belongs to a widget that is shown.
    for (const auto &menu : m_menus) {
        for (QAction *action : menu->actions()) {
            if (action->shortcutContext() == Qt::ApplicationShortcut && !action->shortcut().isEmpty())
                window->addAction(action);
        }
    }
    return false;
}

} // namespace tovi
