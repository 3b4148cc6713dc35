// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>

#include <QImage>
#include <QRect>

#include <xcb/render.h>

#include "Platform/X11/WindowList.h"

namespace tovi {

/// Puts windows together to a picture, as the screen shows them, also where other windows lie on top of them.
/// Works while the windows are redirected (by anybody's request); the display server does the drawing. One
/// thread at a time.
class ScreenComposer
{
public:
    explicit ScreenComposer(XcbSession &session);

    /// Whether the server has what it takes.
    bool isPossible() const { return m_pixels != 0; }
    /// The area (device pixels of the desktop), the windows from the lowest to the highest, without those
    /// left out. They are listed when they are needed, and what that throws is passed on. A null image when
    /// the server does not answer in the session's time or has no memory. What goes wrong with one window
    /// leaves only that window out.
    QImage compose(const QRect &area, const std::function<QList<StackedWindow>()> &listWindows,
                   const std::function<bool(const StackedWindow &)> &isLeftOut);

private:
    class Canvas;

    bool drawWallpaper(const Canvas &canvas);
    void drawRoot(const Canvas &canvas);
    void drawWindow(const Canvas &canvas, const StackedWindow &window, bool blends);
    bool isCompositing();
    QImage read(const Canvas &canvas);
    QImage readShared(const Canvas &canvas);
    xcb_render_pictformat_t formatOf(xcb_visualid_t visual) const;

    XcbSession &m_session;
    std::map<xcb_visualid_t, xcb_render_pictformat_t> m_formats;
    xcb_render_pictformat_t m_pixels = 0; ///< 8 bits each of alpha, red, green and blue
    xcb_visualid_t m_rootVisual = 0;
    uint8_t m_rootDepth = 0;
    bool m_hasSharedMemory = false;
};

} // namespace tovi
