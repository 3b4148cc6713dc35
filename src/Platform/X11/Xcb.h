// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <memory>

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <xcb/res.h>
#include <xcb/xcb.h>

namespace tovi {

struct XcbFree
{
    void operator()(void *memory) const { std::free(memory); }
};
/// What libxcb allocates: replies, errors, events.
template <class T>
using XcbOwned = std::unique_ptr<T, XcbFree>;

/// The connection that Qt uses, and its root window. Main thread only; requests may be mixed with Qt's.
namespace QtXcb {
xcb_connection_t *connection();
xcb_window_t root();
/// A client message about a window; `data` holds five items at most.
void requestOfWindowManager(xcb_window_t window, xcb_atom_t type, std::initializer_list<quint32> data);
} // namespace QtXcb

inline xcb_intern_atom_cookie_t requestAtom(xcb_connection_t *connection, QByteArrayView name)
{
    return xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data());
}

/// The atom's number, 0 when the connection is broken. One round trip: keep the answer.
xcb_atom_t internAtom(xcb_connection_t *connection, QByteArrayView name);

/// A property's 32-bit items; empty for another format.
QList<quint32> propertyItems(const xcb_get_property_reply_t *reply);
/// A property's bytes; empty for another format.
QByteArray propertyBytes(const xcb_get_property_reply_t *reply);

/// The local process of the first client in the reply; 0 for none and for a null reply.
qint64 localClientPid(const xcb_res_query_client_ids_reply_t *reply);

} // namespace tovi
