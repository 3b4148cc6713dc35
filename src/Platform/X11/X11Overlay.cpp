// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Overlay.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWidget>

#include "Platform/X11/ScreenGeometry.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

namespace {

constexpr Clock::Duration grabInterval = std::chrono::milliseconds(30);

} // namespace

class X11Overlay::Window final : public QWidget
{
public:
    Window(std::unique_ptr<QWidget> content, bool compositing)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::BypassWindowManagerHint)
        , m_content(content.release())
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TranslucentBackground, compositing);
        setAttribute(Qt::WA_OpaquePaintEvent, !compositing);
        setAttribute(Qt::WA_QuitOnClose, false);
        m_content->setParent(this);
        m_content->setFocus();
    }

    /// Shown where the content paints nothing.
    void setPicture(const QPixmap &picture) { m_picture = picture; }

protected:
    void paintEvent(QPaintEvent *) override
    {
        if (!m_picture.isNull())
            QPainter(this).drawPixmap(rect(), m_picture);
    }
    void resizeEvent(QResizeEvent *) override { m_content->setGeometry(rect()); }

private:
    QWidget *const m_content;
    QPixmap m_picture;
};

X11Overlay::X11Overlay(std::unique_ptr<QWidget> content, bool compositing, Clock &clock)
    : m_window(new Window(std::move(content), compositing))
    , m_compositing(compositing)
    , m_clock(clock)
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
    if (!m_compositing && !m_window->isVisible())
        m_window->setPicture(m_window->screen()->grabWindow());
    m_window->show();
    m_window->raise();
}

void X11Overlay::makeKey()
{
    auto *connection = QtXcb::connection();
    const auto cookie = xcb_grab_keyboard(connection, 0, static_cast<xcb_window_t>(m_window->winId()),
                                          XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbOwned<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection, cookie, nullptr));
    m_hasKeyboard = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    // Somebody's open menu, or a shortcut's key that is still down.
    if (!m_hasKeyboard)
        m_nextGrab = m_clock.after(grabInterval, [this] { makeKey(); });
}

void X11Overlay::orderOut()
{
    m_nextGrab.reset();
    if (std::exchange(m_hasKeyboard, false))
        xcb_ungrab_keyboard(QtXcb::connection(), XCB_CURRENT_TIME);
    if (m_window)
        m_window->hide();
    xcb_flush(QtXcb::connection());
}

bool X11Overlay::isVisible() const
{
    return m_window->isVisible();
}

} // namespace tovi
