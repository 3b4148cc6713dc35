// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace tovi {

void X11Pasteboard::setString(const QString &text)
{
    // Offering is quick and asks nobody; it is reading through this class that could wait for the owner.
    QGuiApplication::clipboard()->setText(text);
}

} // namespace tovi
