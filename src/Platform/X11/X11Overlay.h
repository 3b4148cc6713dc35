// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QPointer>

#include "Platform/Clock.h"
#include "Platform/PanelHost.h"

namespace tovi {

/// A window over a whole display that the window manager does not know of, so it moves neither the focus nor
/// the active window. Without a compositor it shows the screen as it was.
class X11Overlay final : public Panel
{
public:
    X11Overlay(std::unique_ptr<QWidget> content, bool compositing, Clock &clock);
    ~X11Overlay() override;

    QRectF frame() const override;
    void setFrame(const QRectF &frame) override;
    void orderFrontRegardless() override;
    /// Takes the keyboard as soon as nobody else holds it.
    void makeKey() override;
    void orderOut() override;
    bool isVisible() const override;

private:
    class Window;

    QPointer<Window> m_window;
    const bool m_compositing;
    Clock &m_clock;
    Subscription m_nextGrab;
    bool m_hasKeyboard = false;
};

} // namespace tovi
