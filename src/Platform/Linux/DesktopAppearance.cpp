// SPDX-License-Identifier: MIT
#include "Platform/Linux/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace tovi {

namespace {
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearanceNamespace = QStringLiteral("org.freedesktop.appearance");
const auto colorSchemeKey = QStringLiteral("color-scheme");
} // namespace

DesktopAppearance::DesktopAppearance(std::function<void()> changed)
    : m_changed(std::move(changed))
{
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // Naming the sender here would make Qt wait for the bus to tell its owner.
    bus.connect({}, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto read = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"), portalPath,
                                               settingsInterface, QStringLiteral("Read"));
    read << appearanceNamespace << colorSchemeKey;
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DesktopAppearance::answered);
}

void DesktopAppearance::answered(QDBusPendingCallWatcher *watcher)
{
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError())
        take(reply.value().variant());
}

void DesktopAppearance::settingChanged(const QString &nameSpace, const QString &key,
                                       const QDBusVariant &value)
{
    if (nameSpace == appearanceNamespace && key == colorSchemeKey)
        take(value.variant());
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
