// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbSideConnection.h"

#include <xcb/res.h>

namespace tovi {

XcbSideConnection::~XcbSideConnection()
{
    close();
}

void XcbSideConnection::close()
{
    if (m_connection)
        xcb_disconnect(m_connection);
    m_connection = nullptr;
    m_screen = nullptr;
    m_atoms.clear();
}

xcb_connection_t *XcbSideConnection::get()
{
    if (m_connection && xcb_connection_has_error(m_connection))
        close();
    if (m_connection)
        return m_connection;
    int screenNumber = 0;
    m_connection = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(m_connection)) {
        close();
        return nullptr;
    }
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    m_resourceMask = setup->resource_id_mask;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    while (screenNumber-- > 0 && screens.rem > 1)
        xcb_screen_next(&screens);
    m_screen = screens.data;
    return m_connection;
}

xcb_atom_t XcbSideConnection::atom(const char *name)
{
    if (const xcb_atom_t known = m_atoms.value(name, XCB_ATOM_NONE))
        return known;
    const auto cookie = xcb_intern_atom(m_connection, false, static_cast<uint16_t>(qstrlen(name)), name);
    const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    m_atoms.insert(name, atom);
    return atom;
}

qint64 XcbSideConnection::processOf(quint32 resource)
{
    const auto *extension = xcb_get_extension_data(m_connection, &xcb_res_id);
    if (!extension || !extension->present)
        return 0;
    const xcb_res_client_id_spec_t question{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(m_connection, 1, &question);
    const XcbOwned<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(m_connection, cookie, nullptr));
    return localClientPid(reply.get());
}

bool XcbSideConnection::sameClient(quint32 one, quint32 other) const
{
    return (one & ~m_resourceMask) == (other & ~m_resourceMask);
}

} // namespace tovi
