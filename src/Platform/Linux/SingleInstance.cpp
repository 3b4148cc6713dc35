// SPDX-License-Identifier: MIT
#include "Platform/Linux/SingleInstance.h"

#include <cstdio>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

namespace tovi {

namespace {

const QString serviceName = QStringLiteral("com.brevoll.tovi");
const QString objectPath = QStringLiteral("/com/brevoll/tovi");
const QString interfaceName = QStringLiteral("com.brevoll.tovi");
constexpr int handOverLimitMilliseconds = 2000;

class Receiver final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.brevoll.tovi")

public:
    Receiver(QObject *parent, SingleInstance::Handler handler)
        : QObject(parent)
        , m_handler(std::move(handler))
    {}

public slots:
    Q_SCRIPTABLE void Run(const QStringList &arguments) { m_handler(arguments); }

private:
    SingleInstance::Handler m_handler;
};

} // namespace

SingleInstance::Role SingleInstance::claim(const QStringList &arguments, Handler handler)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        std::fputs("tovi: no session bus; a second start will not find this one\n", stderr);
        return Role::First;
    }

    // The object stands before the name does, so that nobody finds the name without it.
    auto *receiver = new Receiver(QCoreApplication::instance(), std::move(handler));
    bus.registerObject(objectPath, receiver, QDBusConnection::ExportScriptableSlots);
    if (bus.registerService(serviceName))
        return Role::First;
    bus.unregisterObject(objectPath);
    delete receiver;

    QDBusMessage call =
        QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName, QStringLiteral("Run"));
    call << arguments;
    const QDBusMessage answer = bus.call(call, QDBus::Block, handOverLimitMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? Role::HandedOver : Role::Unresponsive;
}

} // namespace tovi

#include "SingleInstance.moc"
