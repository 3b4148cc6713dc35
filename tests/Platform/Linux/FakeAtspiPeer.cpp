// SPDX-License-Identifier: MIT
#include "Platform/Linux/FakeAtspiPeer.h"

#include <QCoreApplication>
#include <QDBusMetaType>
#include <QTemporaryDir>
#include <QTimer>
#include <QUuid>

namespace tovi {

QDBusArgument &operator<<(QDBusArgument &argument, const FakeReference &reference)
{
    argument.beginStructure();
    argument << reference.bus << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FakeReference &reference)
{
    argument.beginStructure();
    argument >> reference.bus >> reference.path;
    argument.endStructure();
    return argument;
}

FakeAtspiPeer::FakeAtspiPeer()
{
    qDBusRegisterMetaType<FakeReference>();
    qDBusRegisterMetaType<FakeReferences>();
}

FakeAtspiPeer::~FakeAtspiPeer()
{
    stopBus();
}

bool FakeAtspiPeer::start()
{
    const QByteArray wanted = m_address.isEmpty() ? "unix:path=" + QDir::tempPath().toUtf8() + "/tovi-test-" +
                                                        QUuid::createUuid().toByteArray(QUuid::Id128)
                                                  : m_address;
    QFile::remove(QString::fromUtf8(wanted.mid(int(qstrlen("unix:path=")))));
    m_daemon.setStandardErrorFile(QProcess::nullDevice());
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                   QStringLiteral("--print-address"),
                                                   QStringLiteral("--address=") + QString::fromUtf8(wanted)});
    if (!m_daemon.waitForStarted() || !m_daemon.waitForReadyRead())
        return false;
    m_address = wanted;
    m_connectionName = QUuid::createUuid().toString();
    QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromUtf8(m_address), m_connectionName);
    m_name = connection.baseService();
    return connection.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath) &&
           connection.registerService(QStringLiteral("org.a11y.atspi.Registry"));
}

void FakeAtspiPeer::stopBus()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
    m_daemon.kill();
    m_daemon.waitForFinished();
    QFile::remove(QString::fromUtf8(m_address.mid(int(qstrlen("unix:path=")))));
}

void FakeAtspiPeer::answer(const QString &path, const QString &member, Answer answer)
{
    m_answers[{path, member}] = std::move(answer);
}

void FakeAtspiPeer::answer(const QString &path, const QString &member, const QVariantList &values)
{
    answer(path, member, [values](const QDBusMessage &) { return values; });
}

QVariant FakeAtspiPeer::reference(const QString &path) const
{
    return QVariant::fromValue(FakeReference{m_name, QDBusObjectPath(path)});
}

QVariant FakeAtspiPeer::references(const QStringList &paths) const
{
    FakeReferences list;
    for (const QString &path : paths)
        list << FakeReference{m_name, QDBusObjectPath(path)};
    return QVariant::fromValue(list);
}

QVariant FakeAtspiPeer::states(std::initializer_list<int> bits)
{
    QList<uint> words{0, 0};
    for (const int bit : bits)
        words[bit / 32] |= 1U << (bit % 32);
    return QVariant::fromValue(words);
}

std::optional<QVariantList> FakeAtspiPeer::ownAnswer(const QString &path, const QString &member) const
{
    constexpr int active = 1, editable = 7, focused = 12, showing = 25;
    const bool isText = path == QLatin1String("/text");
    const bool isWindow = path == QLatin1String("/window");
    if (member == QLatin1String("GetChildren")) {
        if (path.endsWith(QLatin1String("/accessible/root")))
            return QVariantList{references({QStringLiteral("/application")})};
        if (path == QLatin1String("/application"))
            return QVariantList{references({QStringLiteral("/window")})};
        return QVariantList{references(isWindow ? QStringList{QStringLiteral("/text")} : QStringList())};
    }
    if (member == QLatin1String("GetState"))
        return QVariantList{isWindow ? states({active, showing})
                            : isText ? states({focused, showing, editable})
                                     : states({showing})};
    if (member == QLatin1String("ChildCount"))
        return QVariantList{isText ? 0 : 1};
    if (member == QLatin1String("GetExtents") || member == QLatin1String("GetRangeExtents")) {
        return QVariantList{10, 20, 300, 40};
    }
    if (member == QLatin1String("GetRole"))
        return QVariantList{61U};
    if (!isText)
        return std::nullopt;
    const QString text = QStringLiteral("Hello world");
    if (member == QLatin1String("GetNSelections"))
        return QVariantList{1};
    if (member == QLatin1String("GetSelection"))
        return QVariantList{0, 5};
    if (member == QLatin1String("CharacterCount"))
        return QVariantList{int(text.size())};
    if (member == QLatin1String("GetText"))
        return QVariantList{text.left(5)};
    return std::nullopt;
}

bool FakeAtspiPeer::handleMessage(const QDBusMessage &call, const QDBusConnection &connection)
{
    const bool isProperty = call.member() == QLatin1String("Get") && call.arguments().size() == 2;
    const QString member = isProperty ? call.arguments().at(1).toString() : call.member();
    std::optional<QVariantList> values;
    bool found = false;
    for (const QString &path : {call.path(), QString()}) {
        const auto it = m_answers.find({path, member});
        if (it == m_answers.end())
            continue;
        values = it->second(call);
        found = true;
        break;
    }
    if (found && !values)
        return true; // taken, never answered
    if (!found)
        values = ownAnswer(call.path(), member);
    QDBusMessage reply;
    if (!values) {
        reply = call.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("none"));
    } else {
        if (isProperty && !values->isEmpty())
            values->first() = QVariant::fromValue(QDBusVariant(values->first()));
        reply = call.createReply(*values);
    }
    if (delay.count() == 0)
        connection.send(reply);
    else
        QTimer::singleShot(delay, this, [reply, connection] { connection.send(reply); });
    return true;
}

} // namespace tovi
