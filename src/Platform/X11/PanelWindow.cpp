// SPDX-License-Identifier: MIT
#include "Platform/X11/PanelWindow.h"

#include <cmath>
#include <iterator>

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QWindow>

#include <xcb/shape.h>

#include "Platform/X11/Xcb.h"

namespace tovi {

namespace {

constexpr quint32 allDesktops = 0xffffffff;
// In points: how far the shadow reaches, how far below the panel it lies, and how large its corners are.
constexpr int shadowReach = 28;
constexpr int shadowDrop = 6;
constexpr int shadowCorner = shadowReach + PanelWindow::cornerRadius + shadowReach;
constexpr double shadowSoftness = 14; // how far inside the panel it begins to fade
constexpr double shadowStrength = 0.3;

struct Atoms
{
    xcb_atom_t desktop, state, skipTaskbar, skipPager, above, activeWindow, frameExtents;
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
                     .activeWindow = internAtom(connection, "_NET_ACTIVE_WINDOW"),
                     .frameExtents = internAtom(connection, "_GTK_FRAME_EXTENTS")};
    }();
    return values;
}

/// The shadow of the smallest panel there is: four corners with one pixel between them. Fades out like a
/// blurred edge with the distance from the panel.
QPixmap renderShadow(double scale)
{
    const int side = qRound(2 * shadowCorner * scale) + 1;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    const double middle = side / 2.0;
    const double half = middle - (shadowReach + PanelWindow::cornerRadius) * scale;
    for (int y = 0; y < side; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const double dx = std::max(std::abs(x + 0.5 - middle) - half, 0.0);
            const double dy = std::max(std::abs(y + 0.5 - middle - shadowDrop * scale) - half, 0.0);
            const double distance = std::hypot(dx, dy) / scale - PanelWindow::cornerRadius;
            const double far = std::clamp(
                (distance + shadowSoftness) / (shadowReach - shadowDrop + shadowSoftness), 0.0, 1.0);
            const double fading = (1 - far) * (1 - far) * (1 - far);
            line[x] = qRgba(0, 0, 0, qRound(255 * shadowStrength * fading));
        }
    }
    QPixmap shadow = QPixmap::fromImage(image);
    shadow.setDevicePixelRatio(scale);
    return shadow;
}

} // namespace

PanelWindow::PanelWindow(bool compositing)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_compositing(compositing)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_QuitOnClose, false);
    setAttribute(Qt::WA_AlwaysShowToolTips);
    winId(); // makes the native window now
}

void PanelWindow::setContent(std::unique_ptr<QWidget> content)
{
    m_content = content.release();
    m_content->setParent(this);
    m_content->setGeometry(rect().marginsRemoved(shadowMargins()));
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
    if (m_compositing == compositing)
        return;
    const QRect panel = panelRect();
    m_compositing = compositing;
    setPanelRect(panel);
    layOut();
    update();
}

QMargins PanelWindow::shadowMargins() const
{
    return m_compositing ? QMargins(shadowReach, shadowReach, shadowReach, shadowReach) : QMargins();
}

QRect PanelWindow::panelRect() const
{
    return geometry().marginsRemoved(shadowMargins());
}

void PanelWindow::setPanelRect(const QRect &rect)
{
    setGeometry(rect.marginsAdded(shadowMargins()));
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
    QtXcb::requestOfWindowManager(window, atoms().desktop, {allDesktops, fromApplication});
    QtXcb::requestOfWindowManager(window, atoms().state,
                                  {add, atoms().skipTaskbar, atoms().skipPager, fromApplication});
    QtXcb::requestOfWindowManager(window, atoms().state, {add, atoms().above, 0, fromApplication});
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
    QtXcb::requestOfWindowManager(static_cast<xcb_window_t>(winId()), atoms().activeWindow,
                                  {fromUser, time, 0});
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
    if (event->key() == Qt::Key_Escape) {
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
    if (!m_compositing) {
        painter.fillRect(rect(), palette().base());
        return;
    }
    const double scale = devicePixelRatioF();
    static QPixmap shadow;
    if (shadow.isNull() || shadow.devicePixelRatio() != scale)
        shadow = renderShadow(scale);
    // The corners as they are, the edges between them stretched.
    const double corner = shadowCorner * scale;
    const QRectF whole(0, 0, width(), height());
    const double x[] = {0, shadowCorner, whole.width() - shadowCorner, whole.width()};
    const double y[] = {0, shadowCorner, whole.height() - shadowCorner, whole.height()};
    const double p[] = {0, corner, corner + 1, 2 * corner + 1};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            if (row == 1 && column == 1)
                continue;
            painter.drawPixmap(QRectF(QPointF(x[column], y[row]), QPointF(x[column + 1], y[row + 1])), shadow,
                               QRectF(QPointF(p[column], p[row]), QPointF(p[column + 1], p[row + 1])));
        }
    }
}

void PanelWindow::resizeEvent(QResizeEvent *)
{
    layOut();
}

void PanelWindow::layOut()
{
    const QRect panel = rect().marginsRemoved(shadowMargins());
    if (m_content)
        m_content->setGeometry(panel);
    const double scale = devicePixelRatioF();
    setBoundingShape(scale);
    // What is clicked is the panel, not its shadow.
    const xcb_rectangle_t input{int16_t(panel.x() * scale), int16_t(panel.y() * scale),
                                uint16_t(panel.width() * scale), uint16_t(panel.height() * scale)};
    xcb_shape_rectangles(QtXcb::connection(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT,
                         XCB_CLIP_ORDERING_UNSORTED, static_cast<xcb_window_t>(winId()), 0, 0, 1, &input);
    announceShadow();
}

/// Without translucency the corners are cut, pixel row by pixel row. The toolkit's masks know whole points
/// only.
void PanelWindow::setBoundingShape(double scale) const
{
    auto *connection = QtXcb::connection();
    const auto window = static_cast<xcb_window_t>(winId());
    if (m_compositing) {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window, 0, 0, XCB_PIXMAP_NONE);
        return;
    }
    const int width = qRound(rect().width() * scale);
    const int height = qRound(rect().height() * scale);
    const double radius = cornerRadius * scale;
    std::vector<xcb_rectangle_t> rows;
    for (int y = 0; y < height; ++y) {
        const double fromEdge = std::min(y, height - 1 - y) + 0.5;
        const double up = std::max(radius - fromEdge, 0.0);
        const int inset = int(std::floor(radius - std::sqrt(radius * radius - up * up)));
        rows.push_back({int16_t(inset), int16_t(y), uint16_t(width - 2 * inset), 1});
    }
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_YX_SORTED,
                         window, 0, 0, uint32_t(rows.size()), rows.data());
}

/// Window managers that know the property keep the panel, not its shadow, on the screen.
void PanelWindow::announceShadow() const
{
    const auto reach = quint32(m_compositing ? shadowReach * devicePixelRatioF() : 0);
    const quint32 extents[] = {reach, reach, reach, reach};
    xcb_change_property(QtXcb::connection(), XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(winId()),
                        atoms().frameExtents, XCB_ATOM_CARDINAL, 32, 4, extents);
}

} // namespace tovi
