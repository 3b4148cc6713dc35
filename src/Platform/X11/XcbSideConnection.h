// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>

#include <QByteArray>
#include <QHash>

#include "Platform/X11/Xcb.h"

namespace tovi {

/// A connection to the X server of our own, for questions asked off the main thread. Made on first use and
/// again after the server went away; nobody reads it in between. Hold the lock while using it.
class XcbSideConnection
{
public:
    XcbSideConnection() = default;
    ~XcbSideConnection();
    XcbSideConnection(const XcbSideConnection &) = delete;

    std::timed_mutex &mutex() { return m_mutex; }

    /// Null when there is no X server.
    xcb_connection_t *get();
    xcb_screen_t *screen() const { return m_screen; }
    xcb_atom_t atom(const char *name);
    /// The local process that the client owning `resource` runs in; 0 where the server does not know.
    qint64 processOf(quint32 resource);
    /// Whether two resources belong to the same client.
    bool sameClient(quint32 one, quint32 other) const;

private:
    void close();

    std::timed_mutex m_mutex;
    xcb_connection_t *m_connection = nullptr;
    xcb_screen_t *m_screen = nullptr;
    quint32 m_resourceMask = 0;
    QHash<QByteArray, xcb_atom_t> m_atoms;
};

} // namespace tovi
