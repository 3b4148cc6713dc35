// SPDX-License-Identifier: MIT
#pragma once

#include <QFuture>
#include <QImage>
#include <QPointer>
#include <qcorotask.h>

#include "Platform/Clock.h"
#include "Platform/PanelHost.h"

namespace tovi {

class ScreenCapture;

/// A window over a whole display that the window manager does not know of, so it moves neither the focus nor
/// the active window. Without a compositor it shows a picture of the screen, and comes as soon as that is
/// there.
class X11Overlay final : public Panel
{
public:
    /// On a desktop with a compositor.
    X11Overlay(std::unique_ptr<QWidget> content, Clock &clock);
    /// `hiddenWindows` are windows of ours that may still be on the screen for a moment: the picture is
    /// without them.
    X11Overlay(std::unique_ptr<QWidget> content, Clock &clock, ScreenCapture &screenCapture,
               QList<quint32> hiddenWindows);
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
    static QCoro::Task<> showWithPicture(QPointer<Window> window, QFuture<QImage> picture);

    QPointer<Window> m_window;
    Clock &m_clock;
    ScreenCapture *const m_screenCapture; ///< none with a compositor
    const QList<quint32> m_hiddenWindows;
    Subscription m_nextGrab;
    bool m_hasKeyboard = false;
};

} // namespace tovi
