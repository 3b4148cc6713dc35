// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Names and numbers of the accessibility bus's protocol, as far as they are used here.
namespace tovi::Atspi {

inline constexpr char registryName[] = "org.a11y.atspi.Registry";
inline constexpr char registryPath[] = "/org/a11y/atspi/registry";
inline constexpr char registryInterface[] = "org.a11y.atspi.Registry";
inline constexpr char rootPath[] = "/org/a11y/atspi/accessible/root";

inline constexpr char accessible[] = "org.a11y.atspi.Accessible";
inline constexpr char action[] = "org.a11y.atspi.Action";
inline constexpr char application[] = "org.a11y.atspi.Application";
inline constexpr char collection[] = "org.a11y.atspi.Collection";
inline constexpr char component[] = "org.a11y.atspi.Component";
inline constexpr char hyperlink[] = "org.a11y.atspi.Hyperlink";
inline constexpr char hypertext[] = "org.a11y.atspi.Hypertext";
inline constexpr char text[] = "org.a11y.atspi.Text";

inline constexpr quint32 screenCoordinates = 0;

enum State {
    StateActive = 1,
    StateDefunct = 6,
    StateEditable = 7,
    StateEnabled = 8,
    StateFocused = 12,
    StateSensitive = 24,
    StateShowing = 25,
};

constexpr bool has(quint64 states, State state)
{
    return (states >> state) & 1;
}

enum Role {
    RoleCheckBox = 7,
    RoleCheckMenuItem = 8,
    RoleColumnHeader = 10,
    RoleFiller = 20,
    RoleLayeredPane = 30,
    RoleMenu = 33,
    RoleMenuBar = 34,
    RoleMenuItem = 35,
    RolePanel = 39,
    RolePopupMenu = 41,
    RoleRadioButton = 44,
    RoleRadioMenuItem = 45,
    RoleRootPane = 46,
    RoleTableCell = 56,
    RoleTableColumnHeader = 57,
    RoleTableRowHeader = 58,
    RoleToolBar = 63,
};

/// Roles whose text runs on in the line of the text around them.
constexpr bool isInline(quint32 role)
{
    switch (role) {
    case 27:  // image
    case 29:  // label
    case 43:  // push button
    case 44:  // radio button
    case 7:   // check box
    case 61:  // text
    case 67:  // unknown
    case 79:  // entry
    case 88:  // link
    case 108: // definition
    case 116: // static
    case 119: // subscript
    case 120: // superscript
    case 125: // content deletion
    case 126: // content insertion
    case 127: // mark
        return true;
    default:
        return false;
    }
}

/// Roles whose texts stand beside each other in a row.
constexpr bool isCell(quint32 role)
{
    return role == RoleTableCell || role == RoleTableColumnHeader || role == RoleTableRowHeader ||
           role == RoleColumnHeader;
}

constexpr bool isDocument(quint32 role)
{
    return role == 82 || (role >= 92 && role <= 96);
}

} // namespace tovi::Atspi
