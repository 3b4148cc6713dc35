// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QRect>

#include "Platform/X11/XcbSession.h"

namespace tovi {

/// A window on the screen as the display server stacks them: a frame where the window manager made one.
struct StackedWindow
{
    xcb_window_t id = 0;
    xcb_window_t client = 0;      ///< the program's own window inside the frame, else the window itself
    qint64 processIdentifier = 0; ///< of that program; 0 where the server does not know
    xcb_visualid_t visual = 0;
    QRect outline;         ///< device pixels, with the border
    int borderWidth = 0;   ///< device pixels
    quint32 opacity = ~0u; ///< as compositors take it: all bits for opaque
};

/// All visible windows, the lowest first, without those that belong to the window manager alone: a frame is
/// there a moment before its program's window is inside. A few round trips, however many windows there are.
/// `own` is a resource of this program's. None when the server does not answer in the session's time.
std::optional<QList<StackedWindow>> stackedWindows(XcbSession &session, quint32 own);

} // namespace tovi
