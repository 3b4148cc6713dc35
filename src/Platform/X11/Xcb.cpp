// SPDX-License-Identifier: MIT
#include "Platform/X11/Xcb.h"

#include <algorithm>

#include <QGuiApplication>

namespace tovi {

namespace QtXcb {

xcb_connection_t *connection()
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t root()
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

void requestOfWindowManager(xcb_window_t window, xcb_atom_t type, std::initializer_list<quint32> data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::ranges::copy(data, event.data.data32);
    xcb_send_event(connection(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
}

} // namespace QtXcb

xcb_atom_t internAtom(xcb_connection_t *connection, QByteArrayView name)
{
    const XcbOwned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, requestAtom(connection, name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QList<quint32> propertyItems(const xcb_get_property_reply_t *reply)
{
    if (!reply || reply->format != 32)
        return {};
    const auto *items = static_cast<const quint32 *>(xcb_get_property_value(reply));
    return {items, items + xcb_get_property_value_length(reply) / 4};
}

QByteArray propertyBytes(const xcb_get_property_reply_t *reply)
{
    if (!reply || reply->format != 8)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply)), xcb_get_property_value_length(reply)};
}

qint64 localClientPid(const xcb_res_query_client_ids_reply_t *reply)
{
    if (!reply)
        return 0;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem; xcb_res_client_id_value_next(&it)) {
        if (it.data->spec.mask == XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID &&
            xcb_res_client_id_value_value_length(it.data) > 0)
            return *xcb_res_client_id_value_value(it.data);
    }
    return 0;
}

} // namespace tovi
