// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Workspace.h"

#include <QGuiApplication>
#include <QScreen>

#include "Platform/Linux/BrowserIdentifiers.h"
#include "Platform/Linux/DesktopOpener.h"
#include "Platform/Linux/TerminalEmulators.h"
#include "Platform/X11/ScreenGeometry.h"

namespace tovi {

namespace {

QList<Strut> strutsOf(const QList<QList<quint32>> &properties)
{
    // Sizes come first, then first and last pixel of each edge.
    constexpr Strut::Edge edges[] = {Strut::Edge::Left, Strut::Edge::Right, Strut::Edge::Top,
                                     Strut::Edge::Bottom};
    const auto coordinate = [](quint32 value) { return static_cast<int>(std::min(value, 65535u)); };
    QList<Strut> struts;
    for (const auto &items : properties) {
        for (qsizetype i = 0; i < 4; ++i) {
            if (items[i])
                struts.append({.edge = edges[i],
                               .size = coordinate(items[i]),
                               .start = coordinate(items[4 + 2 * i]),
                               .end = coordinate(items[5 + 2 * i])});
        }
    }
    return struts;
}

} // namespace

X11Workspace::X11Workspace()
    : m_connection(QtXcb::connection())
    , m_root(QtXcb::root())
    , m_activeWindowAtom(internAtom(m_connection, "_NET_ACTIVE_WINDOW"))
    , m_workAreaAtom(internAtom(m_connection, "_NET_WORKAREA"))
{
    // Qt asks for the root window's property changes already; asking again must not undo what else it wants.
    const XcbOwned<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        m_connection, xcb_get_window_attributes(m_connection, m_root), nullptr));
    if (attributes && !(attributes->your_event_mask & XCB_EVENT_MASK_PROPERTY_CHANGE)) {
        const uint32_t mask = attributes->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_EVENT_MASK, &mask);
    }
    QCoreApplication::instance()->installNativeEventFilter(this);
    watchScreens();
    m_desktopEntries.prefetch();
}

void X11Workspace::watchScreens()
{
    const auto publish = [this] { publishScreens(); };
    const auto watch = [this, publish](QScreen *screen) {
        QObject::connect(screen, &QScreen::geometryChanged, &m_context, publish);
        QObject::connect(screen, &QScreen::logicalDotsPerInchChanged, &m_context, publish);
    };
    for (QScreen *screen : QGuiApplication::screens())
        watch(screen);
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &m_context, [watch, publish](QScreen *screen) {
        watch(screen);
        publish();
    });
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &m_context, publish);
    QObject::connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &m_context, publish);
    publishScreens();
}

void X11Workspace::publishScreens()
{
    // Qt knows the reserved space only of desktops with a single screen.
    ScreenGeometry::publish(ScreenGeometry(ScreenGeometry::qtDisplays(), strutsOf(m_frontWindow.struts()),
                                           m_frontWindow.desktopSize()));
}

std::optional<RunningApplication> X11Workspace::frontmostApplication()
{
    const auto window = m_frontWindow.details();
    if (!window)
        return std::nullopt;
    const auto entry = m_desktopEntries.find(window->hints);
    RunningApplication application;
    application.processIdentifier = window->window.processIdentifier;
    application.localizedName = entry && !entry->name.isEmpty() ? entry->name : window->hints.windowClass;
    if (application.localizedName.isEmpty())
        application.localizedName = window->hints.processName;
    application.copyModifiers = copyModifiers(window->hints, entry);
    const QString id = entry ? entry->id : window->hints.applicationId;
    application.bundleIdentifier = browserIdentifier(id);
    // An installed web application has an entry of its own, yet it runs in its browser.
    if (application.bundleIdentifier.isEmpty())
        application.bundleIdentifier = browserIdentifier(window->hints.windowClass);
    if (application.bundleIdentifier.isEmpty())
        application.bundleIdentifier = id;
    return application;
}

QList<Screen> X11Workspace::screens()
{
    return ScreenGeometry::current().screens();
}

std::optional<Screen> X11Workspace::mainScreen()
{
    const auto geometry = ScreenGeometry::current();
    if (const auto frame = m_frontWindow.activeFrame())
        return geometry.screenAt(geometry.fromNative(QRectF(*frame)).center());
    if (const auto pointer = mouseLocation())
        return geometry.screenAt(*pointer);
    return geometry.screens().isEmpty() ? std::nullopt : std::optional(geometry.screens().first());
}

std::optional<QPointF> X11Workspace::mouseLocation()
{
    const XcbOwned<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(m_connection, xcb_query_pointer(m_connection, m_root), nullptr));
    if (!pointer || !pointer->same_screen)
        return std::nullopt;
    return ScreenGeometry::current().fromNative(QPointF(pointer->root_x, pointer->root_y));
}

void X11Workspace::open(const QString &url)
{
    DesktopOpener::open(url);
}

bool X11Workspace::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & ~0x80) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto *property = static_cast<const xcb_property_notify_event_t *>(message);
    if (property->window == m_root && property->atom == m_activeWindowAtom)
        m_frontWindow.activeWindowChanged();
    else if (property->window == m_root && property->atom == m_workAreaAtom)
        publishScreens(); // window managers announce reserved space this way
    return false;
}

} // namespace tovi
