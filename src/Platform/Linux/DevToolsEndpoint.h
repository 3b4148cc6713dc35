// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace tovi {

/// Where a browser's DevTools server listens on this machine.
struct DevToolsEndpoint
{
    quint16 port = 0;
    QByteArray path; ///< of the browser as a whole; empty where only the server itself knows
    /// What the server's process may call itself, where another browser may have taken the port; else empty.
    QList<qint64> processes = {};
    bool operator==(const DevToolsEndpoint &) const = default;

    /// The places that are looked at.
    struct Places
    {
        QString home;
        QString configuration; ///< of the user, where not every package of a browser looks
        QString processes = QStringLiteral("/proc");
        static Places standard();
    };

    /// The endpoint of the very process; none when it was started without one. `browser` is its bundle
    /// identifier. Reads files only. Any thread.
    static std::optional<DevToolsEndpoint> find(const QString &browser, qint64 processIdentifier,
                                                const Places &places = Places::standard());
};

} // namespace tovi
