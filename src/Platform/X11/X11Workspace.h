// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "Platform/Linux/DesktopEntries.h"
#include "Platform/Workspace.h"
#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

/// The desktop around the program. Keeps the published ScreenGeometry up to date.
class X11Workspace final : public Workspace, public QAbstractNativeEventFilter
{
public:
    X11Workspace();

    std::optional<RunningApplication> frontmostApplication() override;
    QList<Screen> screens() override;
    std::optional<Screen> mainScreen() override;
    std::optional<QPointF> mouseLocation() override;
    void open(const QString &url) override;

    /// Any thread, as its members.
    FrontWindow &frontWindow() { return m_frontWindow; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void watchScreens();
    void publishScreens();

    FrontWindow m_frontWindow;
    DesktopEntries m_desktopEntries;
    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    xcb_atom_t m_activeWindowAtom, m_workAreaAtom;
    QObject m_context; // ends its connections with us
};

} // namespace tovi
