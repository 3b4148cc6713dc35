// SPDX-License-Identifier: MIT
#include "AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace tovi::AccessibleTree {

namespace {

constexpr int limitMilliseconds = 2000;
constexpr int mostObjects = 2000;
const QString accessible = QStringLiteral("org.a11y.atspi.Accessible");
const QString text = QStringLiteral("org.a11y.atspi.Text");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

struct Address
{
    QString service;
    QString path;
};

QDBusConnection bus()
{
    static const QDBusConnection connection = [] {
        const QDBusMessage answer = QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                           QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
        return QDBusConnection::connectToBus(answer.arguments().value(0).toString(), QStringLiteral("a11y"));
    }();
    return connection;
}

QList<QVariant> call(const Address &object, const QString &interface, const QString &method,
                     const QList<QVariant> &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(object.service, object.path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage answer = bus().call(message, QDBus::Block, limitMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments() : QList<QVariant>();
}

QList<Address> children(const Address &object)
{
    QList<Address> found;
    const QVariant answer = call(object, accessible, QStringLiteral("GetChildren")).value(0);
    const auto list = answer.value<QDBusArgument>();
    if (list.currentSignature() != QLatin1String("a(so)"))
        return found;
    list.beginArray();
    while (!list.atEnd()) {
        Address child;
        QDBusObjectPath path;
        list.beginStructure();
        list >> child.service >> path;
        list.endStructure();
        child.path = path.path();
        found.append(child);
    }
    list.endArray();
    return found;
}

QRect extents(const Address &object)
{
    constexpr quint32 screenCoordinates = 0;
    const QVariant answer = call(object, QStringLiteral("org.a11y.atspi.Component"),
                                 QStringLiteral("GetExtents"), {screenCoordinates})
                                .value(0);
    const auto rectangle = answer.value<QDBusArgument>();
    if (rectangle.currentSignature() != QLatin1String("(iiii)"))
        return {};
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    rectangle.beginStructure();
    rectangle >> x >> y >> width >> height;
    rectangle.endStructure();
    return {x, y, width, height};
}

void append(const Address &object, QList<Node> &nodes)
{
    if (nodes.size() >= mostObjects)
        return;
    Node node;
    node.role = call(object, accessible, QStringLiteral("GetRoleName")).value(0).toString();
    node.name = call(object, properties, QStringLiteral("Get"), {accessible, QStringLiteral("Name")})
                    .value(0)
                    .value<QDBusVariant>()
                    .variant()
                    .toString();
    node.text = call(object, text, QStringLiteral("GetText"), {0, -1}).value(0).toString();
    node.extents = extents(object);
    nodes.append(node);
    for (const Address &child : children(object))
        append(child, nodes);
}

} // namespace

bool enable()
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"), properties, QStringLiteral("Set"));
    message << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled")
            << QVariant::fromValue(QDBusVariant(true));
    return QDBusConnection::sessionBus().call(message).type() == QDBusMessage::ReplyMessage;
}

QList<Node> read(qint64 processIdentifier)
{
    QList<Node> nodes;
    const Address root{QStringLiteral("org.a11y.atspi.Registry"),
                       QStringLiteral("/org/a11y/atspi/accessible/root")};
    const Address daemon{QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus")};
    for (const Address &application : children(root)) {
        const QVariant process = call(daemon, QStringLiteral("org.freedesktop.DBus"),
                                      QStringLiteral("GetConnectionUnixProcessID"), {application.service})
                                     .value(0);
        if (process.toLongLong() == processIdentifier)
            append(application, nodes);
    }
    return nodes;
}

} // namespace tovi::AccessibleTree
