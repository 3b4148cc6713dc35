// SPDX-License-Identifier: MIT
#include "Platform/Linux/DesktopAppearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace tovi {

namespace {
const auto portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearanceNamespace = QStringLiteral("org.freedesktop.appearance");
const auto colorSchemeKey = QStringLiteral("color-scheme");
} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection &bus, std::function<void()> changed)
    : m_bus(bus)
    , m_changed(std::move(changed))
{
    if (!m_bus.isConnected())
        return;
    // Naming the sender here would make Qt wait for the bus to tell its owner.
    m_bus.connect({}, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                  SLOT(settingChanged(QDBusMessage)));
    auto *portal =
        new QDBusServiceWatcher(portalService, m_bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(portal, &QDBusServiceWatcher::serviceRegistered, this, &DesktopAppearance::ask);
    ask();
}

void DesktopAppearance::ask()
{
    auto read =
        QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, QStringLiteral("Read"));
    read << appearanceNamespace << colorSchemeKey;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DesktopAppearance::answered);
}

void DesktopAppearance::answered(QDBusPendingCallWatcher *watcher)
{
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError())
        take(reply.value().variant());
}

void DesktopAppearance::settingChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.value(0) == appearanceNamespace && arguments.value(1) == colorSchemeKey)
        take(arguments.value(2));
}

void DesktopAppearance::take(const QVariant &colorScheme)
{
    // Read wraps its answer in one variant more than the signal does.
    QVariant value = colorScheme;
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    std::optional<bool> prefersDark;
    if (value.toUInt() == 1)
        prefersDark = true;
    else if (value.toUInt() == 2)
        prefersDark = false;
    if (prefersDark != std::exchange(m_prefersDark, prefersDark))
        m_changed();
}

} // namespace tovi
