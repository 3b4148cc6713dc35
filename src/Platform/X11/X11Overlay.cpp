// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Overlay.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <qcorofuture.h>

#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

namespace {

constexpr Clock::Duration grabInterval = std::chrono::milliseconds(30);

} // namespace

class X11Overlay::Window final : public QWidget
{
public:
    Window(std::unique_ptr<QWidget> content, bool translucent)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::BypassWindowManagerHint)
        , m_content(content.release())
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground, translucent);
        setAttribute(Qt::WA_OpaquePaintEvent, !translucent);
        setAttribute(Qt::WA_QuitOnClose, false);
        m_content->setParent(this);
        m_content->setFocus();
    }

    /// Shown where the content paints nothing.
    void setPicture(const QImage &picture)
    {
        m_picture = picture;
        update();
    }
    void present()
    {
        isWanted = true;
        show();
        raise();
        if (const auto run = std::exchange(onPresent, nullptr))
            run();
    }

    std::function<void()> onPresent;
    bool isWanted = false; ///< on the screen, though it may not be there yet

protected:
    void paintEvent(QPaintEvent *event) override
    {
        if (m_picture.isNull()) {
            if (testAttribute(Qt::WA_OpaquePaintEvent))
                QPainter(this).fillRect(event->rect(), Qt::black);
            return;
        }
        // Only what has changed: a large display is many pixels.
        const double scale = double(m_picture.width()) / width();
        QPainter painter(this);
        for (const QRect &part : event->region())
            painter.drawImage(QRectF(part), m_picture,
                              QRectF(QPointF(part.topLeft()) * scale, QSizeF(part.size()) * scale));
    }
    void resizeEvent(QResizeEvent *) override { m_content->setGeometry(rect()); }

private:
    QWidget *const m_content;
    QImage m_picture;
};

X11Overlay::X11Overlay(std::unique_ptr<QWidget> content, const Surroundings &surroundings)
    : m_window(new Window(std::move(content), surroundings.compositing))
    , m_surroundings(surroundings)
{
    m_compositorEnd = surroundings.compositorEnded.subscribe([this] {
        m_surroundings.compositing = false;
        if (m_window->isWanted)
            showWithPicture(m_window,
                            takePicture({.excludedApplication = QCoreApplication::applicationPid()}));
    });
}

X11Overlay::~X11Overlay()
{
    orderOut();
    if (m_window)
        m_window->deleteLater(); // one of its events may be what ends us
}

QRectF X11Overlay::frame() const
{
    return ScreenGeometry::current().fromQt(QRectF(m_window->geometry()));
}

void X11Overlay::setFrame(const QRectF &frame)
{
    const QRect rect = ScreenGeometry::current().toQt(frame);
    // A display's scale counts from its own corner, so the window has to be the display's before it is
    // placed.
    if (QScreen *screen = QGuiApplication::screenAt(rect.center()))
        m_window->setScreen(screen);
    m_window->setGeometry(rect);
}

void X11Overlay::orderFrontRegardless()
{
    if (m_surroundings.compositing || m_window->isWanted) {
        m_window->present();
        return;
    }
    m_window->isWanted = true;
    showWithPicture(m_window, takePicture({.excludedWindows = m_surroundings.hiddenWindows}));
}

QFuture<QImage> X11Overlay::takePicture(ContentFilter filter) const
{
    const auto screen = ScreenGeometry::current().screenAt(frame().center());
    if (!screen)
        return QtFuture::makeReadyFuture(QImage());
    filter.display = screen->displayNumber;
    const QSizeF size = screen->frame.size();
    return m_surroundings.screenCapture.captureImage(
        filter, {.sourceRect = QRectF({0, 0}, size), .size = (size * screen->backingScaleFactor).toSize()});
}

QCoro::Task<> X11Overlay::showWithPicture(QPointer<Window> window, QFuture<QImage> picture)
{
    QImage image;
    try {
        image = co_await picture;
    } catch (const std::exception &) {
        if (window)
            image = window->screen()->grabWindow().toImage();
        image.setDevicePixelRatio(1);
    }
    if (!window || !window->isWanted)
        co_return;
    window->setPicture(image);
    window->present();
}

void X11Overlay::makeKey()
{
    auto *connection = QtXcb::connection();
    const auto cookie = xcb_grab_keyboard(connection, 0, static_cast<xcb_window_t>(m_window->winId()),
                                          XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbOwned<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection, cookie, nullptr));
    m_hasKeyboard = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (m_hasKeyboard)
        return;
    // Our window is not there yet; or somebody's open menu, or a shortcut's key that is still down.
    if (!m_window->isVisible())
        m_window->onPresent = [this] { makeKey(); };
    else
        m_nextGrab = m_surroundings.clock.after(grabInterval, [this] { makeKey(); });
}

void X11Overlay::orderOut()
{
    m_nextGrab.reset();
    if (std::exchange(m_hasKeyboard, false))
        xcb_ungrab_keyboard(QtXcb::connection(), XCB_CURRENT_TIME);
    if (m_window) {
        m_window->isWanted = false;
        m_window->onPresent = nullptr;
        m_window->hide();
    }
    xcb_flush(QtXcb::connection());
}

bool X11Overlay::isVisible() const
{
    return m_window->isWanted;
}

} // namespace tovi
