// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

/// What applications write about their menu items, in one form. Any thread.
namespace tovi::MenuItemText {

/// The title as a person reads it: without padding, shortcut and mark of the mnemonic.
QString title(const QString &name);

/// The upper-case character that does the same as the item together with the Control key (and perhaps other
/// modifiers); none where the binding is of another kind. Takes the forms of GTK ("c;<Alt>e:c;<Primary>c")
/// and of Qt ("Ctrl+C", in the application's language).
std::optional<QString> commandCharacter(const QString &keyBinding);

} // namespace tovi::MenuItemText
