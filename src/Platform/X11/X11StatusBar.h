// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QAbstractNativeEventFilter>

#include "Platform/Application.h"
#include "Platform/X11/Xcb.h"

class QDBusServiceWatcher;

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
    Application::StatusBar state(std::optional<bool> desktopPrefersDark) const;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void findTray();

    bool m_hasNotifierHost = false;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    xcb_atom_t m_managerAtom = 0;
    xcb_atom_t m_trayAtom = 0;
    xcb_atom_t m_coloursAtom = 0;
    xcb_window_t m_tray = 0;
    std::optional<bool> m_isTrayDark;
};

} // namespace tovi
