// SPDX-License-Identifier: MIT
#include "UI/Controls/MenuPresenter.h"

#include <QApplication>
#include <QMenu>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include "UI/Controls/MenuStyle.h"

namespace tovi::MenuPresenter {

namespace {

QPointer<QMenu> openMenu;

} // namespace

std::unique_ptr<QMenu> makeMenu()
{
    auto menu = std::make_unique<QMenu>();
    menu->setStyle(MenuStyle::shared());
    QFont font = menu->font();
    font.setPixelSize(13);
    menu->setFont(font);
    return menu;
}

QString literalTitle(const QString &title)
{
    // A tab would begin the shortcut's column.
    return title.simplified().replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QMenu *popUp(std::unique_ptr<QMenu> menu, QWidget &owner, QPoint at)
{
    // Not a child of the owner: one of its actions may be what takes the owner away.
    QMenu *shown = menu.release();
    QObject::connect(shown, &QMenu::aboutToHide, shown, &QObject::deleteLater);
    QObject::connect(&owner, &QObject::destroyed, shown, &QMenu::close);
    // The press that closes a menu does nothing else.
    shown->setAttribute(Qt::WA_NoMouseReplay);
    shown->winId();
    if (QWindow *window = shown->windowHandle())
        window->setTransientParent(owner.window()->windowHandle());
    openMenu = shown;
    QPoint corner = owner.mapToGlobal(at);
    // Where there is no room below, the toolkit would put it over its owner.
    const int height = shown->sizeHint().height();
    const QScreen *screen = owner.screen();
    if (screen && corner.y() + height > screen->availableGeometry().bottom() + 1)
        corner.setY(owner.mapToGlobal(QPoint()).y() - height);
    shown->popup(corner);
    return shown;
}

bool isMenuOpen()
{
    return openMenu && openMenu->isVisible();
}

} // namespace tovi::MenuPresenter
