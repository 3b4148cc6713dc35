// SPDX-License-Identifier: MIT
#pragma once

#include <QFuture>
#include <QImage>
#include <QPointer>
#include <qcorotask.h>

#include "Platform/Clock.h"
#include "Platform/PanelHost.h"
#include "Platform/ScreenCapture.h"

namespace tovi {

/// A window over a whole display that the window manager does not know of, so it moves neither the focus nor
/// the active window. Without a compositor it shows a picture of the screen, and comes as soon as that is
/// there.
class X11Overlay final : public Panel
{
public:
    struct Surroundings
    {
        bool compositing;
        Subject<> &compositorEnded;
        ScreenCapture &screenCapture;
        Clock &clock;
        /// Of ours, and maybe still on the screen for a moment: pictures are without them.
        QList<quint32> hiddenWindows;
    };

    X11Overlay(std::unique_ptr<QWidget> content, const Surroundings &surroundings);
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
    QFuture<QImage> takePicture(ContentFilter filter) const;
    static QCoro::Task<> showWithPicture(QPointer<Window> window, QFuture<QImage> picture);

    QPointer<Window> m_window;
    Surroundings m_surroundings;
    Subscription m_compositorEnd;
    Subscription m_nextGrab;
    bool m_hasKeyboard = false;
};

} // namespace tovi
