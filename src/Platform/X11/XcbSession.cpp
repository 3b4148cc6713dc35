// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbSession.h"

#include <algorithm>

#include <poll.h>
#include <xcb/xcbext.h>

namespace tovi {

XcbSession::XcbSession()
    : m_connection(xcb_connect(nullptr, nullptr))
{
    if (isOpen())
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
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

xcb_atom_t XcbSession::atom(QByteArrayView name)
{
    const auto answer = reply<xcb_intern_atom_reply_t>(requestAtom(m_connection, name));
    return answer ? answer->atom : xcb_atom_t(XCB_ATOM_NONE);
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
