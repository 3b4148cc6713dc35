// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include "DesktopSession.h"

namespace tovi {

/// A browser that asks nothing and calls nobody, with a profile in the desktop's home folder.
inline QStringList chromiumArguments(const DesktopSession &desktop, const QStringList &more)
{
    return QStringList{QStringLiteral("--no-sandbox"),
                       QStringLiteral("--no-first-run"),
                       QStringLiteral("--disable-gpu"),
                       QStringLiteral("--disable-quic"),
                       QStringLiteral("--disable-background-networking"),
                       QStringLiteral("--disable-component-update"),
                       QStringLiteral("--disable-sync"),
                       QStringLiteral("--password-store=basic"),
                       QStringLiteral("--user-data-dir=") + desktop.home() + QStringLiteral("/chromium")} +
           more;
}

} // namespace tovi
