// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbActiveWindow.h"

namespace tovi {

std::optional<ActiveWindow> XcbActiveWindow::activeWindow()
{
    const auto lock = m_connection.lock();
    if (!m_connection.get())
        return std::nullopt;
    const xcb_window_t window = m_connection.number(m_connection.screen()->root,
                                                    m_connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    if (window == XCB_WINDOW_NONE)
        return std::nullopt;
    qint64 process = m_connection.number(window, m_connection.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL);
    if (process == 0)
        process = m_connection.processOf(window);
    return ActiveWindow{
        process,
        m_connection.text(window, m_connection.atom("_NET_WM_NAME"), m_connection.atom("UTF8_STRING")),
        window};
}

} // namespace tovi
