// SPDX-License-Identifier: MIT
#include "Platform/Linux/NotifierHost.h"

#include <limits>
#include <utility>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace tovi {

namespace {
const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");
} // namespace

NotifierHost::NotifierHost(std::function<void()> changed)
    : m_changed(std::move(changed))
{
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        m_isThere = false;
        return;
    }
    // Naming the senders here would make Qt wait for the bus to tell their owners.
    bus.connect({}, QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
                QStringLiteral("NameOwnerChanged"), {watcherName}, QString(), this,
                SLOT(ownerChanged(QString, QString, QString)));
    // A watcher of items may be there before anybody shows them.
    for (const char *signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus.connect({}, watcherPath, watcherName, QLatin1String(signal), this, SLOT(ask()));
    ask();
}

NotifierHost::~NotifierHost() = default;

void NotifierHost::ask()
{
    auto question = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    constexpr int withoutLimit = std::numeric_limits<int>::max();
    m_question = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(question, withoutLimit));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, &NotifierHost::answered);
}

void NotifierHost::answered()
{
    const QDBusPendingReply<QDBusVariant> reply = *m_question;
    m_question.release()->deleteLater();
    const bool isThere = !reply.isError() && reply.value().variant().toBool();
    if (std::exchange(m_isThere, isThere) != isThere)
        m_changed();
}

} // namespace tovi
