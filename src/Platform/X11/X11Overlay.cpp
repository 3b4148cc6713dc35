// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Overlay.h"

#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWidget>
#include <qcorofuture.h>

#include "Platform/ScreenCapture.h"
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
    void setPicture(const QImage &picture) { m_picture = picture; }
    void present()
    {
        isWanted = true;
        show();
        raise();
    }

    bool isWanted = false; ///< on the screen, though it may not be there yet

protected:
    void paintEvent(QPaintEvent *event) override
    {
        if (m_picture.isNull())
            return;
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

X11Overlay::X11Overlay(std::unique_ptr<QWidget> content, Clock &clock)
    : m_window(new Window(std::move(content), true))
    , m_clock(clock)
    , m_screenCapture(nullptr)
{}

X11Overlay::X11Overlay(std::unique_ptr<QWidget> content, Clock &clock, ScreenCapture &screenCapture,
                       QList<quint32> hiddenWindows)
    : m_window(new Window(std::move(content), false))
    , m_clock(clock)
    , m_screenCapture(&screenCapture)
    , m_hiddenWindows(std::move(hiddenWindows))
{}

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
    const auto screen = ScreenGeometry::current().screenAt(frame().center());
    if (!m_screenCapture || !screen || m_window->isWanted) {
        m_window->present();
        return;
    }
    m_window->isWanted = true;
    const QSizeF size = screen->frame.size();
    const ContentFilter filter{.display = screen->displayNumber, .excludedWindows = m_hiddenWindows};
    const StreamConfiguration whole{.sourceRect = QRectF({0, 0}, size),
                                    .size = (size * screen->backingScaleFactor).toSize()};
    showWithPicture(m_window, m_screenCapture->captureImage(filter, whole));
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
    // Somebody's open menu, a shortcut's key that is still down, or our window is not there yet.
    if (!m_hasKeyboard)
        m_nextGrab = m_clock.after(grabInterval, [this] { makeKey(); });
}

void X11Overlay::orderOut()
{
    m_nextGrab.reset();
    if (std::exchange(m_hasKeyboard, false))
        xcb_ungrab_keyboard(QtXcb::connection(), XCB_CURRENT_TIME);
    if (m_window) {
        m_window->isWanted = false;
        m_window->hide();
    }
    xcb_flush(QtXcb::connection());
}

bool X11Overlay::isVisible() const
{
    return m_window->isWanted;
}

} // namespace tovi
