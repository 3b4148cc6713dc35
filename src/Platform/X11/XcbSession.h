// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <QByteArrayList>
#include <QHash>

#include "Platform/X11/Xcb.h"

namespace tovi {

/// A connection to the display server of our own, with an end to every wait. One thread at a time: its owner
/// guards it. After the server is gone, or did not answer in time, everything answers nothing.
class XcbSession
{
public:
    using Time = std::chrono::steady_clock::time_point;

    XcbSession();
    ~XcbSession();
    XcbSession(const XcbSession &) = delete;

    xcb_connection_t *connection() const { return m_connection; }
    xcb_window_t root() const { return m_root; }
    bool isOpen() const;

    /// Gives all requests until then `limit` to be answered.
    void startDeadline(std::chrono::milliseconds limit)
    {
        m_deadline = std::chrono::steady_clock::now() + limit;
    }

    bool isLate() const { return std::chrono::steady_clock::now() > m_deadline; }

    /// The reply of a request, null when it failed or the deadline passed.
    template <class Reply, class Cookie>
    XcbOwned<Reply> reply(Cookie cookie)
    {
        return XcbOwned<Reply>(static_cast<Reply *>(waitForReply(cookie.sequence)));
    }
    XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_cookie_t cookie)
    {
        return reply<xcb_get_property_reply_t>(cookie);
    }
    /// A request for a property of any type, at most `length` four-byte units.
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property,
                                              quint32 length = 256) const;
    /// Asked for once.
    xcb_atom_t atom(const QByteArray &name);
    /// Asks for many at once: one round trip.
    void prefetchAtoms(const QByteArrayList &names);
    /// A window that somebody may still write to: it stays until the session ends, or until it is one of too
    /// many. Programs die of writing to a window that has gone.
    void abandon(xcb_window_t window);
    /// The local process that the client owning `resource` runs in; 0 where the server does not know.
    qint64 processOf(quint32 resource);
    /// Whether two resources belong to the same client.
    bool isSameClient(quint32 one, quint32 other) const;

private:
    void *waitForReply(unsigned sequence);

    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_root = 0;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QList<xcb_window_t> m_abandoned;
    Time m_deadline = Time::max();
};

/// Replies of the server on a session, which ends its waiting, or on the toolkit's connection, which knows no
/// end: whoever is asked, the question is the same.
class XcbReplies
{
public:
    XcbReplies(XcbSession &session)
        : m_session(&session)
        , m_connection(session.connection())
    {}
    XcbReplies(xcb_connection_t *connection)
        : m_connection(connection)
    {}

    xcb_connection_t *connection() const { return m_connection; }
    /// Null when the request failed. `wait` is the library's function for this kind of reply.
    template <class Reply, class Cookie>
    XcbOwned<Reply> reply(Cookie cookie,
                          Reply *(*wait)(xcb_connection_t *, Cookie, xcb_generic_error_t **)) const
    {
        return m_session ? m_session->reply<Reply>(cookie)
                         : XcbOwned<Reply>(wait(m_connection, cookie, nullptr));
    }

private:
    XcbSession *m_session = nullptr;
    xcb_connection_t *m_connection;
};

} // namespace tovi
