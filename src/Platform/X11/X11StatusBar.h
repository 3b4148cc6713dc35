// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QAbstractNativeEventFilter>

#include "Platform/Application.h"
#include "Platform/Linux/NotifierHost.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

/// The two places where an X11 desktop may show status items: a notifier host on the session bus, and a tray
/// that embeds windows. Main thread.
class X11StatusBar final : public QAbstractNativeEventFilter
{
public:
    X11StatusBar();
    ~X11StatusBar() override;
    X11StatusBar(const X11StatusBar &) = delete;

    std::function<void()> onChange;
    /// It is not there before the session bus has answered: an item that is made earlier may be lost.
    Application::StatusBar state(std::optional<bool> desktopPrefersDark) const;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void findTray();
    void watchTray();
    void changed();

    NotifierHost m_notifierHost;
    xcb_atom_t m_managerAtom = 0;
    xcb_atom_t m_trayAtom = 0;
    xcb_atom_t m_coloursAtom = 0;
    xcb_window_t m_tray = 0;
    std::optional<bool> m_isTrayDark;
};

} // namespace tovi
