// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "Platform/Linux/AtspiClient.h"

/// Menus of other applications, which are all there while they are closed. What comes to nothing is none or
/// empty; the request then knows whether it was for lack of time.
namespace tovi::AtspiMenu {

/// An object inside a menu bar, with what does not change about it while it is there.
struct Node
{
    AtspiObject object;
    quint32 role = 0;
    QString identifier;          ///< its application's own; empty where it has none
    QString keyBinding;          ///< of items, as the toolkit writes it
    QList<AtspiObject> children; ///< a bounded number of them
    bool hasIdentifiers = false; ///< whether its application gives any
};

bool isMenu(quint32 role);
bool isItem(quint32 role);

/// The menu bar of a window, shown or not. Looks near the window's top only, never into its contents.
std::optional<Node> menuBar(AtspiRequest &request, const AtspiObject &window);
/// The nodes of all children, in two rounds of questions: a search has to look at whole menus.
QList<Node> children(AtspiRequest &request, const Node &parent);

std::optional<QString> name(AtspiRequest &request, const AtspiObject &object);
std::optional<bool> isEnabled(AtspiRequest &request, const AtspiObject &object);
/// Chooses the item as a click on it does, without opening its menu. False when it has nothing to be chosen
/// by or its application refused.
bool press(AtspiRequest &request, const AtspiObject &object);

} // namespace tovi::AtspiMenu
