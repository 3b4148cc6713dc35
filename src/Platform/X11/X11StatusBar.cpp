// SPDX-License-Identifier: MIT
#include "Platform/X11/X11StatusBar.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>

namespace tovi {

namespace {

const QString hostName = QStringLiteral("org.kde.StatusNotifierWatcher");

/// From the colour in which the tray wants symbols drawn: light ones stand on a dark ground.
std::optional<bool> isDarkGround(const QList<quint32> &colours)
{
    if (colours.size() < 3)
        return std::nullopt;
    const quint64 brightness = 3ull * colours[0] + 6ull * colours[1] + colours[2];
    return brightness > 10ull * 0x8000;
}

} // namespace

X11StatusBar::X11StatusBar()
    : m_watcher(std::make_unique<QDBusServiceWatcher>(hostName, QDBusConnection::sessionBus(),
                                                      QDBusServiceWatcher::WatchForOwnerChange))
{
    auto *connection = QtXcb::connection();
    m_managerAtom = internAtom(connection, "MANAGER");
    m_trayAtom = internAtom(connection, "_NET_SYSTEM_TRAY_S0");
    m_coloursAtom = internAtom(connection, "_NET_SYSTEM_TRAY_COLORS");
    findTray();
    QCoreApplication::instance()->installNativeEventFilter(this);
    if (auto *bus = QDBusConnection::sessionBus().interface())
        m_hasNotifierHost = bus->isServiceRegistered(hostName).value();
    QObject::connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, m_watcher.get(),
                     [this](const QString &, const QString &, const QString &owner) {
                         m_hasNotifierHost = !owner.isEmpty();
                         if (onChange)
                             onChange();
                     });
}

X11StatusBar::~X11StatusBar() = default;

void X11StatusBar::findTray()
{
    auto *connection = QtXcb::connection();
    const XcbOwned<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, m_trayAtom), nullptr));
    m_tray = owner ? owner->owner : xcb_window_t(XCB_WINDOW_NONE);
    m_isTrayDark.reset();
    if (!m_tray)
        return;
    const XcbOwned<xcb_get_property_reply_t> colours(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, m_tray, m_coloursAtom, XCB_ATOM_CARDINAL, 0, 12),
        nullptr));
    m_isTrayDark = isDarkGround(propertyItems(colours.get()));
}

Application::StatusBar X11StatusBar::state(std::optional<bool> desktopPrefersDark) const
{
    if (!m_hasNotifierHost)
        return {.isThere = m_tray != XCB_WINDOW_NONE,
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
    if ((event->response_type & ~0x80) != XCB_CLIENT_MESSAGE)
        return false;
    const auto *client = static_cast<const xcb_client_message_event_t *>(message);
    if (client->type == m_managerAtom && client->data.data32[1] == m_trayAtom) {
        findTray();
        if (onChange)
            onChange();
    }
    return false;
}

} // namespace tovi
