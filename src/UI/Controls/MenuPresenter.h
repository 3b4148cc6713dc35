// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QPoint>

class QMenu;
class QWidget;

/// The only code that places menus which belong to a widget.
namespace tovi::MenuPresenter {

/// A menu in the program's style: check marks and icons side by side, room for both in every row; typed
/// letters choose items. The title is literal.
std::unique_ptr<QMenu> makeMenu(const QString &title = {});
/// The same as an item of another menu, which owns it.
QMenu *addSubmenu(QMenu &menu, const QString &title);
/// Text for a menu item that shows exactly this title.
QString literalTitle(const QString &title);

/// Shows it with its upper-left corner at a point of the owner, or above the owner where there is no room,
/// and deletes it after it has closed. It goes with its owner.
QMenu *popUp(std::unique_ptr<QMenu> menu, QWidget &owner, QPoint at);

/// Whether such a menu is open: presses then belong to it, wherever they are.
bool isMenuOpen();

} // namespace tovi::MenuPresenter
