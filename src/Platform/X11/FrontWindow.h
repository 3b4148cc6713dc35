// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>
#include <set>

#include <QRect>

#include "Platform/Linux/ActiveWindow.h"
#include "Platform/Linux/DesktopEntries.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

/// Which window the user works in. Panels of this program do not count: while one is active the answer is the
/// window that was active before. Asks only the display server, for a quarter of a second at most. Any
/// thread.
class FrontWindow final : public ActiveWindowSource
{
public:
    struct Window
    {
        quint32 id = 0;
        qint64 processIdentifier = 0; ///< 0 where nobody knows
        bool operator==(const Window &) const = default;
    };
    struct Details
    {
        Window window;
        QString title; ///< may be empty
        ApplicationHints hints;
        bool hasKeyboard = true; ///< false while one of our panels has it
    };

    FrontWindow();

    std::optional<ActiveWindow> activeWindow() override;
    /// The same, with how the window names its application.
    std::optional<Details> details();
    /// Where the active window is, panels included. Device pixels.
    std::optional<QRect> activeFrame();
    /// Space that desktop panels reserve, for each window that does: left, right, top, bottom, then the first
    /// and last pixel of each.
    QList<QList<quint32>> struts();
    QSize desktopSize();

    /// The server's present time, newer than any input so far; 0 when it does not answer.
    quint32 serverTime();
    /// Whether a window manager takes requests to activate a window.
    bool takesActivationRequests();
    /// Whether the window manager has let go of a hidden window.
    bool isWithdrawn(quint32 id);

    /// Windows of this program that never count.
    void addPanel(quint32 id);
    void removePanel(quint32 id);
    /// To be called at every change of the active window, so that the window before a panel is known.
    void activeWindowChanged();

private:
    quint32 activeWindowId();
    quint32 frontWindow();

    std::mutex m_mutex; // of everything below
    XcbSession m_session;
    xcb_atom_t m_activeWindowAtom, m_pidAtom, m_applicationIdAtom, m_clientListAtom, m_strutAtom,
        m_strutPartialAtom, m_supportedAtom, m_nameAtom, m_stateAtom;
    bool m_hasResources = false;
    std::set<quint32> m_panels;
    bool m_hasKeyboard = true; // whether the last window has it, and no panel of ours
    quint32 m_lastWindow = 0;
    xcb_window_t m_timeWindow = 0; // made for serverTime()
};

} // namespace tovi
