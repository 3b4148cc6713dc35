// SPDX-License-Identifier: MIT
#include "Platform/X11/X11EventMonitors.h"

#include <QApplication>
#include <QCursor>

#include "Platform/X11/X11RawInput.h"

namespace tovi {

namespace {

/// A click that the server gives to one of our windows; an open menu holds the pointer and takes all of them.
bool goesToUs()
{
    return QApplication::activePopupWidget() || QGuiApplication::topLevelAt(QCursor::pos());
}

} // namespace

Subscription X11EventMonitors::addGlobalMouseDownMonitor(std::function<void()> handler)
{
    return m_rawInput.watch(X11RawInput::Kind::ButtonPress, [handler = std::move(handler)](quint32 button) {
        constexpr quint32 left = 1;
        constexpr quint32 right = 3;
        if ((button == left || button == right) && !goesToUs())
            handler();
    });
}

} // namespace tovi
