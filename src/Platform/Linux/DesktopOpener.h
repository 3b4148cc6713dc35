// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Opens addresses in the desktop's own programs.
namespace tovi::DesktopOpener {

/// The program and its arguments that open an address on a desktop, given the value of XDG_CURRENT_DESKTOP.
/// Empty where there is none: for other schemes than the web's, and for settings of unknown desktops.
QStringList command(const QString &url, const QString &currentDesktop);

/// Starts the command for this desktop without waiting for it.
void open(const QString &url);

} // namespace tovi::DesktopOpener
