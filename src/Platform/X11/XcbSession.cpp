// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbSession.h"

#include <algorithm>
#include <vector>

#include <poll.h>
#include <xcb/xcbext.h>

namespace tovi {

XcbSession::XcbSession()
{
    int screen = 0;
    m_connection = xcb_connect(nullptr, &screen);
    if (!isOpen())
        return;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    while (screen-- > 0 && screens.rem > 1)
        xcb_screen_next(&screens);
    m_root = screens.data->root;
}

XcbSession::~XcbSession()
{
    xcb_disconnect(m_connection);
}

bool XcbSession::isOpen() const
{
    return xcb_connection_has_error(m_connection) == 0;
}

xcb_get_property_cookie_t XcbSession::requestProperty(xcb_window_t window, xcb_atom_t property,
                                                      quint32 length) const
{
    return xcb_get_property(m_connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

xcb_atom_t XcbSession::atom(const QByteArray &name)
{
    if (const xcb_atom_t known = m_atoms.value(name, XCB_ATOM_NONE))
        return known;
    const auto answer = reply<xcb_intern_atom_reply_t>(requestAtom(m_connection, name));
    return answer ? *m_atoms.insert(name, answer->atom) : xcb_atom_t(XCB_ATOM_NONE);
}

void XcbSession::prefetchAtoms(const QByteArrayList &names)
{
    std::vector<std::pair<QByteArray, xcb_intern_atom_cookie_t>> cookies;
    for (const QByteArray &name : names) {
        if (!m_atoms.contains(name))
            cookies.emplace_back(name, requestAtom(m_connection, name));
    }
    for (const auto &[name, cookie] : cookies) {
        if (const auto answer = reply<xcb_intern_atom_reply_t>(cookie))
            m_atoms.insert(name, answer->atom);
    }
}

void XcbSession::abandon(xcb_window_t window)
{
    constexpr qsizetype mostWindows = 64;
    m_abandoned << window;
    if (m_abandoned.size() > mostWindows)
        xcb_destroy_window(m_connection, m_abandoned.takeFirst());
}

qint64 XcbSession::processOf(quint32 resource)
{
    const auto *extension = xcb_get_extension_data(m_connection, &xcb_res_id);
    if (!extension || !extension->present)
        return 0;
    const xcb_res_client_id_spec_t question{resource, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return localClientPid(
        reply<xcb_res_query_client_ids_reply_t>(xcb_res_query_client_ids(m_connection, 1, &question)).get());
}

bool XcbSession::isSameClient(quint32 one, quint32 other) const
{
    const quint32 own = ~xcb_get_setup(m_connection)->resource_id_mask;
    return (one & own) == (other & own);
}

void *XcbSession::waitForReply(unsigned sequence)
{
    using namespace std::chrono;
    xcb_flush(m_connection);
    for (;;) {
        void *reply = nullptr;
        xcb_generic_error_t *error = nullptr;
        if (xcb_poll_for_reply(m_connection, sequence, &reply, &error)) {
            std::free(error);
            return reply;
        }
        const auto left = duration_cast<milliseconds>(m_deadline - steady_clock::now());
        if (left <= milliseconds(0) || !isOpen()) {
            xcb_discard_reply(m_connection, sequence);
            return nullptr;
        }
        pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&descriptor, 1, static_cast<int>(std::min(left, milliseconds(10'000)).count()) + 1);
    }
}

} // namespace tovi
