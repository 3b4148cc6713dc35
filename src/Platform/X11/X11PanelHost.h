// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <QAbstractNativeEventFilter>

#include "Platform/Clock.h"
#include "Platform/PanelHost.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

class FrontWindow;
class PanelWindow;
class ScreenCapture;

/// Panels as utility windows of the window manager. A window is kept ready, so that a panel appears sooner.
class X11PanelHost final : public PanelHost, public QAbstractNativeEventFilter
{
public:
    X11PanelHost(FrontWindow &frontWindow, Clock &clock, ScreenCapture &screenCapture);
    ~X11PanelHost() override;

    std::unique_ptr<Panel> makePanel(std::unique_ptr<QWidget> content) override;
    std::unique_ptr<Panel> makeOverlay(std::unique_ptr<QWidget> content) override;
    bool isCompositing() const override { return m_compositing; }

    /// Hides the panels that are shown, behind their owners' backs.
    void hidePanels();
    /// Shows again what hidePanels() has hidden, except what has ended since.
    void unhidePanels();

    int idleWindows() const;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    class X11Panel;
    struct Windows;

    void setUpCompositing();
    void prepareLater(Clock::Duration delay);

    Clock &m_clock;
    ScreenCapture &m_screenCapture;
    std::shared_ptr<Windows> m_windows; // panels may outlive us by a moment
    Subscription m_preparation;
    xcb_atom_t m_compositorAtom = 0;
    uint8_t m_fixesEvent = 0; // 0 without the extension
    bool m_compositing = false;
    Subject<> m_compositorEnded;
    bool m_hasDrawnText = false;
};

} // namespace tovi
