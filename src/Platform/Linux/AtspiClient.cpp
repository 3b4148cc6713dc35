// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiClient.h"

#include <systemd/sd-bus.h>

#include "Platform/Linux/AtspiNames.h"

namespace tovi {

namespace {

/// Caches of at most this many entries; beyond it they start anew.
constexpr int cacheLimit = 512;
constexpr quint32 textByteLimit = 16 << 20;
/// No desktop is this large: applications use extreme numbers for "nowhere".
constexpr int coordinateLimit = 1 << 20;

const AtspiObject busDriver{"org.freedesktop.DBus", "/org/freedesktop/DBus"};

} // namespace

AtspiRequest::AtspiRequest(AtspiClient &client, Clock::Duration timeout)
    : m_client(client)
    , m_deadline(std::max(timeout, Clock::Duration::zero()), Qt::PreciseTimer)
    , m_lock(client.m_mutex, std::max(timeout, Clock::Duration::zero()))
{
    if (!m_lock)
        m_error = AXError::TimedOut;
    else if (!connect())
        m_error = m_deadline.hasExpired() ? AXError::TimedOut : AXError::NotTrusted;
}

AtspiRequest::~AtspiRequest()
{
    // Answers that come too late, however large, go down with the connection.
    if (m_lock && m_error != AXError::None)
        m_client.m_connection.reset();
}

bool AtspiRequest::connect()
{
    const QByteArray address = m_client.m_addressReader();
    if (address != m_client.m_address || (m_client.m_connection && !m_client.m_connection->drain(m_deadline)))
        m_client.m_connection.reset();
    if (address.isEmpty())
        return false;
    if (m_client.m_connection)
        return true;
    m_client.m_connection = DBusConnection::open(address, m_deadline);
    if (!m_client.m_connection)
        return false;
    const QByteArray identifier = m_client.m_connection->busIdentifier();
    if (identifier.isEmpty() || identifier != m_client.m_busIdentifier || address != m_client.m_address) {
        m_client.m_processes.clear();
        m_client.m_toolkits.clear();
        m_client.m_lastFocus.clear();
    }
    m_client.m_address = address;
    m_client.m_busIdentifier = identifier;
    // Some applications keep the states of their windows up to date only while somebody listens for events.
    // One that practically never happens is enough, and costs nobody anything.
    m_client.m_connection->send(m_client.m_connection->method(Atspi::registryName, Atspi::registryPath,
                                                              Atspi::registryInterface, "RegisterEvent", "s",
                                                              "Object:AttributesChanged:"));
    return true;
}

void AtspiRequest::note(DBusStatus status)
{
    if (m_error != AXError::None)
        return;
    if (status == DBusStatus::TimedOut)
        m_error = AXError::TimedOut;
    else if (status == DBusStatus::Disconnected)
        m_error = AXError::CannotComplete;
}

DBusMessage AtspiRequest::property(const AtspiObject &object, const char *interface, const char *name)
{
    return method(object, "org.freedesktop.DBus.Properties", "Get", "ss", interface, name);
}

DBusReply AtspiRequest::call(const DBusMessage &message)
{
    if (m_error != AXError::None)
        return {DBusStatus::TimedOut, nullptr};
    DBusReply reply = m_client.m_connection->call(message, m_deadline);
    note(reply.status);
    return reply;
}

std::vector<DBusReply> AtspiRequest::callAll(const std::vector<DBusMessage> &messages)
{
    if (m_error != AXError::None)
        return std::vector<DBusReply>(messages.size());
    std::vector<DBusReply> replies = m_client.m_connection->callAll(messages, m_deadline);
    for (const DBusReply &reply : replies)
        note(reply.status);
    return replies;
}

std::vector<qint64> AtspiRequest::processes(const QList<QByteArray> &names)
{
    auto &known = m_client.m_processes;
    QList<QByteArray> unknown;
    std::vector<DBusMessage> questions;
    for (const QByteArray &name : names) {
        if (known.contains(name))
            continue;
        unknown << name;
        questions.push_back(
            method(busDriver, "org.freedesktop.DBus", "GetConnectionUnixProcessID", "s", name.constData()));
    }
    const std::vector<DBusReply> replies = callAll(questions);
    if (known.size() + unknown.size() > cacheLimit)
        known.clear();
    for (qsizetype i = 0; i < unknown.size(); ++i) {
        if (const auto process = AtspiReply::number(replies[static_cast<std::size_t>(i)]))
            known.insert(unknown[i], *process);
    }
    std::vector<qint64> result;
    for (const QByteArray &name : names)
        result.push_back(known.value(name));
    return result;
}

bool AtspiRequest::isOfToolkit(const AtspiObject &object, const char *toolkit)
{
    auto known = m_client.m_toolkits.constFind(object.bus);
    if (known == m_client.m_toolkits.constEnd()) {
        const AtspiObject application{object.bus, Atspi::rootPath};
        const auto name =
            AtspiReply::textProperty(call(property(application, Atspi::application, "ToolkitName")));
        if (m_client.m_toolkits.size() >= cacheLimit)
            m_client.m_toolkits.clear();
        known = m_client.m_toolkits.insert(object.bus, name.value_or(QString()));
    }
    return known.value() == QLatin1String(toolkit);
}

void AtspiRequest::setLastFocus(const AtspiObject &window, const AtspiObject &focus)
{
    if (m_client.m_lastFocus.size() >= cacheLimit)
        m_client.m_lastFocus.clear();
    m_client.m_lastFocus.insert(window, focus);
}

namespace AtspiReply {

namespace {

/// The answer's message, to be read from its start; null unless the call went well.
sd_bus_message *start(const DBusReply &reply)
{
    if (reply.status != DBusStatus::Ok || !reply.message)
        return nullptr;
    return sd_bus_message_rewind(reply.message.get(), true) < 0 ? nullptr : reply.message.get();
}

template <class T>
std::optional<T> basic(const DBusReply &reply, const char *type)
{
    T value{};
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_read(message, type, &value) <= 0)
        return std::nullopt;
    return value;
}

std::optional<QString> bounded(const char *text)
{
    if (qstrnlen(text, textByteLimit + 1) > textByteLimit)
        return std::nullopt;
    return QString::fromUtf8(text);
}

bool readReference(sd_bus_message *message, AtspiObject &object)
{
    const char *bus = nullptr;
    const char *path = nullptr;
    if (!message || sd_bus_message_read(message, "(so)", &bus, &path) <= 0)
        return false;
    object = {bus, path};
    // An empty name means the answering application itself.
    if (object.bus.isEmpty())
        object.bus = sd_bus_message_get_sender(message);
    return true;
}

std::optional<AtspiObject> readObject(sd_bus_message *message)
{
    AtspiObject object;
    return readReference(message, object) && !object.isNull() ? std::optional(object) : std::nullopt;
}

} // namespace

std::optional<int> integer(const DBusReply &reply)
{
    return basic<int>(reply, "i");
}

std::optional<quint32> number(const DBusReply &reply)
{
    return basic<quint32>(reply, "u");
}

std::optional<int> integerProperty(const DBusReply &reply)
{
    int value = 0;
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_read(message, "v", "i", &value) <= 0)
        return std::nullopt;
    return value;
}

std::optional<QString> text(const DBusReply &reply)
{
    const auto value = basic<const char *>(reply, "s");
    return value ? bounded(*value) : std::nullopt;
}

std::optional<QString> textProperty(const DBusReply &reply)
{
    const char *value = nullptr;
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_read(message, "v", "s", &value) <= 0)
        return std::nullopt;
    return bounded(value);
}

std::optional<AtspiObject> object(const DBusReply &reply)
{
    return readObject(start(reply));
}

std::optional<AtspiObject> objectProperty(const DBusReply &reply)
{
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, "(so)") <= 0)
        return std::nullopt;
    return readObject(message);
}

QList<AtspiObject> objects(const DBusReply &reply, int limit)
{
    QList<AtspiObject> result;
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(so)") <= 0)
        return result;
    AtspiObject object;
    while (result.size() < limit && readReference(message, object)) {
        if (!object.isNull())
            result << object;
    }
    return result;
}

quint64 states(const DBusReply &reply)
{
    sd_bus_message *message = start(reply);
    const void *words = nullptr;
    size_t size = 0;
    if (!message || sd_bus_message_read_array(message, SD_BUS_TYPE_UINT32, &words, &size) <= 0)
        return 0;
    quint64 bits = 0;
    std::memcpy(&bits, words, std::min(size, sizeof bits)); // the low word comes first
    return bits;
}

std::optional<AtspiTextRange> range(const DBusReply &reply)
{
    AtspiTextRange range;
    sd_bus_message *message = start(reply);
    if (!message || sd_bus_message_read(message, "ii", &range.start, &range.end) <= 0)
        return std::nullopt;
    return range;
}

std::optional<QRect> rectangle(const DBusReply &reply)
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    sd_bus_message *message = start(reply);
    if (!message)
        return std::nullopt;
    const char *type = sd_bus_message_has_signature(message, "(iiii)") > 0 ? "(iiii)" : "iiii";
    if (sd_bus_message_read(message, type, &x, &y, &width, &height) <= 0)
        return std::nullopt;
    for (const int value : {x, y, width, height}) {
        if (value < -coordinateLimit || value > coordinateLimit)
            return std::nullopt;
    }
    return QRect(x, y, width, height);
}

} // namespace AtspiReply

} // namespace tovi
