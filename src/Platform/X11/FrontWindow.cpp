// SPDX-License-Identifier: MIT
#include "Platform/X11/FrontWindow.h"

#include <vector>

#include <QFile>

#include <xcb/res.h>

namespace tovi {

namespace {

constexpr std::chrono::milliseconds limit{250};

QString processName(qint64 pid)
{
    QFile file(QStringLiteral("/proc/%1/comm").arg(pid));
    return pid > 0 && file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed()
                                                     : QString();
}

} // namespace

FrontWindow::FrontWindow()
{
    m_session.startDeadline(std::chrono::seconds(2));
    auto *connection = m_session.connection();
    xcb_prefetch_extension_data(connection, &xcb_res_id);
    const struct
    {
        xcb_atom_t &atom;
        const char *name;
    } wanted[] = {{m_activeWindowAtom, "_NET_ACTIVE_WINDOW"},
                  {m_pidAtom, "_NET_WM_PID"},
                  {m_applicationIdAtom, "_GTK_APPLICATION_ID"},
                  {m_clientListAtom, "_NET_CLIENT_LIST"},
                  {m_strutAtom, "_NET_WM_STRUT"},
                  {m_strutPartialAtom, "_NET_WM_STRUT_PARTIAL"},
                  {m_supportedAtom, "_NET_SUPPORTED"},
                  {m_nameAtom, "_NET_WM_NAME"},
                  {m_stateAtom, "WM_STATE"}};
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const auto &entry : wanted)
        cookies.push_back(requestAtom(connection, entry.name));
    for (size_t i = 0; i < cookies.size(); ++i) {
        const auto reply = m_session.reply<xcb_intern_atom_reply_t>(cookies[i]);
        wanted[i].atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }
    if (m_session.isOpen()) {
        const auto *resources = xcb_get_extension_data(connection, &xcb_res_id);
        m_hasResources = resources && resources->present;
    }
    activeWindowChanged();
}

quint32 FrontWindow::activeWindowId()
{
    const auto items = propertyItems(
        m_session.reply(m_session.requestProperty(m_session.root(), m_activeWindowAtom, 1)).get());
    return items.value(0);
}

quint32 FrontWindow::frontWindow()
{
    const quint32 active = activeWindowId();
    m_hasKeyboard = !m_panels.contains(active);
    if (!active || !m_hasKeyboard)
        return active ? m_lastWindow : 0;
    return m_lastWindow = active;
}

void FrontWindow::activeWindowChanged()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    frontWindow();
}

std::optional<ActiveWindow> FrontWindow::activeWindow()
{
    const auto front = details();
    if (!front)
        return std::nullopt;
    return ActiveWindow{front->window.processIdentifier, front->title, front->window.id, front->hasKeyboard};
}

std::optional<FrontWindow::Details> FrontWindow::details()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    const quint32 id = frontWindow();
    if (!id)
        return std::nullopt;
    auto *connection = m_session.connection();
    const auto pidCookie = m_session.requestProperty(id, m_pidAtom, 1);
    const auto classCookie = m_session.requestProperty(id, XCB_ATOM_WM_CLASS);
    const auto applicationCookie = m_session.requestProperty(id, m_applicationIdAtom);
    const auto nameCookie = m_session.requestProperty(id, m_nameAtom);
    XcbOwned<xcb_res_query_client_ids_reply_t> clients;
    if (m_hasResources) {
        const xcb_res_client_id_spec_t spec{id, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        clients =
            m_session.reply<xcb_res_query_client_ids_reply_t>(xcb_res_query_client_ids(connection, 1, &spec));
    }
    const auto classReply = m_session.reply(classCookie);
    const auto pidItems = propertyItems(m_session.reply(pidCookie).get());
    const auto application = propertyBytes(m_session.reply(applicationCookie).get());
    const auto title = propertyBytes(m_session.reply(nameCookie).get());
    if (!classReply)
        return std::nullopt; // the window is gone

    Details details;
    details.window.id = id;
    details.hasKeyboard = m_hasKeyboard;
    details.title = QString::fromUtf8(title);
    // Inside a sandbox an application counts processes its own way; the server knows the real one.
    details.window.processIdentifier = localClientPid(clients.get());
    if (!details.window.processIdentifier)
        details.window.processIdentifier = pidItems.value(0);
    const auto names = propertyBytes(classReply.get()).split('\0');
    details.hints.windowInstance = QString::fromUtf8(names.value(0));
    details.hints.windowClass = QString::fromUtf8(names.value(1));
    details.hints.applicationId = QString::fromUtf8(application);
    details.hints.processName = processName(details.window.processIdentifier);
    return details;
}

std::optional<QRect> FrontWindow::activeFrame()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    const quint32 id = activeWindowId();
    if (!id)
        return std::nullopt;
    const auto sizeCookie = xcb_get_geometry(m_session.connection(), id);
    const auto cornerCookie = xcb_translate_coordinates(m_session.connection(), id, m_session.root(), 0, 0);
    const auto size = m_session.reply<xcb_get_geometry_reply_t>(sizeCookie);
    const auto corner = m_session.reply<xcb_translate_coordinates_reply_t>(cornerCookie);
    if (!size || !corner)
        return std::nullopt;
    return QRect(corner->dst_x, corner->dst_y, size->width, size->height);
}

QList<QList<quint32>> FrontWindow::struts()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    constexpr quint32 mostWindows = 4096;
    const auto windows = propertyItems(
        m_session.reply(m_session.requestProperty(m_session.root(), m_clientListAtom, mostWindows)).get());
    std::vector<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> cookies;
    for (const quint32 window : windows)
        cookies.emplace_back(m_session.requestProperty(window, m_strutPartialAtom, 12),
                             m_session.requestProperty(window, m_strutAtom, 4));
    QList<QList<quint32>> result;
    for (const auto &[partialCookie, plainCookie] : cookies) {
        const auto partial = propertyItems(m_session.reply(partialCookie).get());
        auto plain = propertyItems(m_session.reply(plainCookie).get());
        if (partial.size() == 12) {
            result.append(partial);
        } else if (plain.size() == 4) {
            // Along the whole edge.
            for (int edge = 0; edge < 4; ++edge)
                plain << 0 << 65535;
            result.append(plain);
        }
    }
    return result;
}

QSize FrontWindow::desktopSize()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    const auto root =
        m_session.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(m_session.connection(), m_session.root()));
    return root ? QSize(root->width, root->height) : QSize();
}

quint32 FrontWindow::serverTime()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    auto *connection = m_session.connection();
    if (!m_session.isOpen())
        return 0;
    if (!m_timeWindow) {
        m_timeWindow = xcb_generate_id(connection);
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection, 0, m_timeWindow, m_session.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    }
    // Appending nothing changes nothing, and is announced with its time before the round trip's answer.
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, m_timeWindow, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        0, nullptr);
    m_session.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection));
    quint32 time = 0;
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection)}) {
        if ((event->response_type & ~0x80) == XCB_PROPERTY_NOTIFY)
            time = reinterpret_cast<const xcb_property_notify_event_t *>(event.get())->time;
    }
    return time;
}

bool FrontWindow::takesActivationRequests()
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    constexpr quint32 mostAtoms = 1024;
    const auto supported = propertyItems(
        m_session.reply(m_session.requestProperty(m_session.root(), m_supportedAtom, mostAtoms)).get());
    return supported.contains(m_activeWindowAtom);
}

bool FrontWindow::isWithdrawn(quint32 id)
{
    const std::scoped_lock lock(m_mutex);
    m_session.startDeadline(limit);
    constexpr quint32 withdrawn = 0;
    const auto state = propertyItems(m_session.reply(m_session.requestProperty(id, m_stateAtom, 2)).get());
    return state.value(0, withdrawn) == withdrawn;
}

void FrontWindow::addPanel(quint32 id)
{
    const std::scoped_lock lock(m_mutex);
    m_panels.insert(id);
}

void FrontWindow::removePanel(quint32 id)
{
    const std::scoped_lock lock(m_mutex);
    m_panels.erase(id);
}

} // namespace tovi
