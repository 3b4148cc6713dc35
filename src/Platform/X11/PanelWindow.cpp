// SPDX-License-Identifier: MIT
#include "Platform/X11/PanelWindow.h"

#include <iterator>

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

#include "Platform/X11/Xcb.h"

namespace tovi {

namespace {

constexpr quint32 allDesktops = 0xffffffff;

struct Atoms
{
    xcb_atom_t desktop, state, skipTaskbar, skipPager, above, activeWindow;
};

const Atoms &atoms()
{
    static const Atoms values = [] {
        auto *connection = QtXcb::connection();
        return Atoms{.desktop = internAtom(connection, "_NET_WM_DESKTOP"),
                     .state = internAtom(connection, "_NET_WM_STATE"),
                     .skipTaskbar = internAtom(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                     .skipPager = internAtom(connection, "_NET_WM_STATE_SKIP_PAGER"),
                     .above = internAtom(connection, "_NET_WM_STATE_ABOVE"),
                     .activeWindow = internAtom(connection, "_NET_ACTIVE_WINDOW")};
    }();
    return values;
}

void requestOfWindowManager(xcb_window_t window, xcb_atom_t type, std::initializer_list<quint32> data)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = type;
    std::ranges::copy(data, event.data.data32);
    xcb_send_event(QtXcb::connection(), 0, QtXcb::root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&event));
}

QPainterPath outline(const QRectF &rect)
{
    QPainterPath path;
    path.addRoundedRect(rect, PanelWindow::cornerRadius, PanelWindow::cornerRadius);
    return path;
}

} // namespace

PanelWindow::PanelWindow(bool compositing)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_compositing(compositing)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    winId(); // makes the native window now
}

void PanelWindow::setContent(std::unique_ptr<QWidget> content)
{
    m_content = content.release();
    m_content->setParent(this);
    m_content->setGeometry(rect());
    m_content->show();
}

void PanelWindow::release()
{
    onEscape = nullptr;
    hide();
    if (m_content) {
        m_content->hide();
        m_content->deleteLater();
        m_content.clear();
    }
}

void PanelWindow::setCompositing(bool compositing)
{
    if (std::exchange(m_compositing, compositing) == compositing)
        return;
    updateShape();
    update();
}

void PanelWindow::present()
{
    if (isVisible()) {
        raise();
        return;
    }
    setStatesBeforeMapping();
    show();
    raise();
    requestStates();
}

void PanelWindow::setStatesBeforeMapping()
{
    // Window managers remove both properties from a window that hides. Qt adds its own states to these.
    auto *connection = QtXcb::connection();
    const auto window = static_cast<xcb_window_t>(winId());
    const quint32 states[] = {atoms().skipTaskbar, atoms().skipPager};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atoms().desktop, XCB_ATOM_CARDINAL, 32, 1,
                        &allDesktops);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atoms().state, XCB_ATOM_ATOM, 32,
                        std::size(states), states);
}

void PanelWindow::requestStates()
{
    // Asked for again: a window that is shown right after it was hidden can lose its properties to a window
    // manager that is still busy hiding it.
    constexpr quint32 add = 1;
    constexpr quint32 fromApplication = 1;
    const auto window = static_cast<xcb_window_t>(winId());
    requestOfWindowManager(window, atoms().desktop, {allDesktops, fromApplication});
    requestOfWindowManager(window, atoms().state,
                           {add, atoms().skipTaskbar, atoms().skipPager, fromApplication});
    requestOfWindowManager(window, atoms().state, {add, atoms().above, 0, fromApplication});
    xcb_flush(QtXcb::connection());
}

void PanelWindow::makeKey(quint32 time)
{
    if (!time) {
        activateWindow();
        return;
    }
    // The user asked for this panel, maybe a moment ago and typing on since; a request with the shortcut's
    // own time, as Qt makes it, counts as an application stealing the keyboard then.
    constexpr quint32 fromUser = 2;
    requestOfWindowManager(static_cast<xcb_window_t>(winId()), atoms().activeWindow, {fromUser, time, 0});
    xcb_flush(QtXcb::connection());
}

void PanelWindow::focusCame()
{
    // Qt lets a window keep the focus for a moment after it was hidden. Shown and focused again within that
    // time it has not changed hands for Qt's windows, while Qt's widgets do not count it as active any more.
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (isVisible() && !isActiveWindow() && QGuiApplication::focusWindow() == windowHandle())
                QApplication::setActiveWindow(this);
        },
        Qt::QueuedConnection);
}

void PanelWindow::escape()
{
    // The handler usually gives this window back.
    if (const auto handler = onEscape)
        handler();
}

void PanelWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        event->accept();
        escape();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void PanelWindow::closeEvent(QCloseEvent *event)
{
    // The window manager's close command means the same as Esc; only the panel's owner hides it.
    event->ignore();
    escape();
}

void PanelWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(0.18f);
    if (!m_compositing)
        painter.fillRect(rect(), palette().window());
    painter.fillPath(outline(area), palette().window());
    painter.setPen(line);
    painter.drawPath(outline(area));
}

void PanelWindow::resizeEvent(QResizeEvent *)
{
    if (m_content)
        m_content->setGeometry(rect());
    updateShape();
}

void PanelWindow::updateShape()
{
    if (m_compositing)
        clearMask();
    else
        setMask(QRegion(outline(rect()).toFillPolygon().toPolygon()));
}

} // namespace tovi
