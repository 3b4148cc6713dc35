// SPDX-License-Identifier: MIT
#include "Platform/X11/X11StatusBar.h"

#include <QCoreApplication>

namespace tovi {

namespace {

/// From the colour in which the tray wants symbols drawn: light ones stand on a dark background.
std::optional<bool> isDarkBackground(const QList<quint32> &colours)
{
    if (colours.size() < 3)
        return std::nullopt;
    const quint64 brightness = 3ull * colours[0] + 6ull * colours[1] + colours[2];
    return brightness > 10ull * 0x8000;
}

} // namespace

X11StatusBar::X11StatusBar()
    : m_notifierHost([this] { changed(); })
{
    auto *connection = QtXcb::connection();
    m_managerAtom = internAtom(connection, "MANAGER");
    m_trayAtom = internAtom(connection, "_NET_SYSTEM_TRAY_S0");
    m_coloursAtom = internAtom(connection, "_NET_SYSTEM_TRAY_COLORS");
    findTray();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11StatusBar::~X11StatusBar() = default;

void X11StatusBar::findTray()
{
    auto *connection = QtXcb::connection();
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, m_trayAtom), nullptr));
    m_tray = owner ? owner->owner : xcb_window_t(XCB_WINDOW_NONE);
    watchTray();
}

void X11StatusBar::watchTray()
{
    m_isTrayDark.reset();
    if (!m_tray)
        return;
    auto *connection = QtXcb::connection();
    constexpr uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const auto selection =
        xcb_change_window_attributes_checked(connection, m_tray, XCB_CW_EVENT_MASK, &events);
    xcb_discard_reply(connection, selection.sequence); // nor does the error of a tray that is gone matter
    const XcbOwned<xcb_get_property_reply_t> colours(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, m_tray, m_coloursAtom, XCB_ATOM_CARDINAL, 0, 12),
        nullptr));
    m_isTrayDark = isDarkBackground(propertyItems(colours.get()));
}

void X11StatusBar::changed()
{
    if (onChange)
        onChange();
    // The toolkit, which is told of a new tray after us, asks for fewer events of it on the same connection.
    QMetaObject::invokeMethod(
        &m_notifierHost,
        [this] {
            const auto before = m_isTrayDark;
            watchTray();
            if (m_isTrayDark != before && onChange)
                onChange();
        },
        Qt::QueuedConnection);
}

Application::StatusBar X11StatusBar::state(std::optional<bool> desktopPrefersDark) const
{
    const std::optional<bool> hasNotifierHost = m_notifierHost.isThere();
    if (!hasNotifierHost.value_or(false))
        return {.isThere = hasNotifierHost && m_tray != XCB_WINDOW_NONE,
                .isDark = m_isTrayDark ? m_isTrayDark : desktopPrefersDark};
    // GNOME's bar is dark whatever the desktop prefers.
    const bool isGnome = qgetenv("XDG_CURRENT_DESKTOP").split(':').contains(QByteArrayLiteral("GNOME"));
    return {.isThere = true, .isDark = isGnome ? true : desktopPrefersDark};
}

bool X11StatusBar::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    switch (event->response_type & ~0x80) {
    case XCB_CLIENT_MESSAGE: {
        const auto *client = static_cast<const xcb_client_message_event_t *>(message);
        if (client->type != m_managerAtom || client->data.data32[1] != m_trayAtom)
            return false;
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (static_cast<const xcb_destroy_notify_event_t *>(message)->window != m_tray)
            return false;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto *property = static_cast<const xcb_property_notify_event_t *>(message);
        if (property->window != m_tray || property->atom != m_coloursAtom)
            return false;
        break;
    }
    default:
        return false;
    }
    findTray();
    changed();
    return false;
}

} // namespace tovi
