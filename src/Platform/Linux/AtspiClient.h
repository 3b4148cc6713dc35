// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include <QHash>
#include <QRect>

#include "Platform/Accessibility.h"
#include "Platform/Linux/DBusConnection.h"

namespace tovi {

/// The address of one accessible object: its application's name on the bus and its path there.
struct AtspiObject
{
    QByteArray bus;
    QByteArray path;
    bool operator==(const AtspiObject &) const = default;
    bool isNull() const { return path.isEmpty() || path.endsWith("/null"); }
};

inline size_t qHash(const AtspiObject &object, size_t seed = 0)
{
    return qHashMulti(seed, object.bus, object.path);
}

/// Characters [start, end) of an object's text, in its application's own counting.
struct AtspiTextRange
{
    int start = 0;
    int end = 0;
    bool operator==(const AtspiTextRange &) const = default;
};

/// The connection to the accessibility bus that all requests share, one request at a time. Made on the first
/// request; made anew when the bus was restarted or an application did not answer.
class AtspiClient
{
public:
    /// `address` tells where the bus is: nothing while there is none. Called on the threads of requests.
    explicit AtspiClient(std::function<QByteArray()> address)
        : m_addressReader(std::move(address))
    {}

private:
    friend class AtspiRequest;

    const std::function<QByteArray()> m_addressReader;
    std::timed_mutex m_mutex; ///< guards what follows
    std::unique_ptr<DBusConnection> m_connection;
    QByteArray m_address;
    QByteArray m_busIdentifier;
    QHash<QByteArray, qint64> m_processes;       ///< of bus names, which are never used twice
    QHash<QByteArray, QString> m_toolkits;       ///< of applications, by bus name
    QHash<AtspiObject, AtspiObject> m_lastFocus; ///< by window
};

/// One accessibility request: any number of calls to applications that share one time limit. After the first
/// call that ran into it, every further one fails at once.
class AtspiRequest
{
public:
    AtspiRequest(AtspiClient &client, Clock::Duration timeout);
    ~AtspiRequest();
    AtspiRequest(const AtspiRequest &) = delete;

    /// None while all is well; why no further call can succeed otherwise.
    AXError error() const { return m_error; }
    QDeadlineTimer deadline() const { return m_deadline; }
    /// What a step that came to nothing means for the whole request.
    AXResult failure(AXError otherwise) const { return {m_error == AXError::None ? otherwise : m_error, {}}; }

    template <class... Arguments>
    DBusMessage method(const AtspiObject &object, const char *interface, const char *member,
                       const char *signature = "", Arguments... arguments)
    {
        if (m_error != AXError::None)
            return nullptr;
        return m_client.m_connection->method(object.bus.constData(), object.path.constData(), interface,
                                             member, signature, arguments...);
    }
    DBusMessage property(const AtspiObject &object, const char *interface, const char *name);

    DBusReply call(const DBusMessage &message);
    std::vector<DBusReply> callAll(const std::vector<DBusMessage> &messages);

    /// The process that owns each bus name; 0 where it is gone.
    std::vector<qint64> processes(const QList<QByteArray> &names);

    /// Whether the object's application is built with the toolkit: for what only one of them does wrong.
    bool isOfToolkit(const AtspiObject &object, const char *toolkit);

    AtspiObject lastFocus(const AtspiObject &window) const { return m_client.m_lastFocus.value(window); }
    void setLastFocus(const AtspiObject &window, const AtspiObject &focus);

private:
    bool connect();
    void note(DBusStatus status);

    AtspiClient &m_client;
    QDeadlineTimer m_deadline;
    std::unique_lock<std::timed_mutex> m_lock;
    AXError m_error = AXError::None;
};

/// Readers of answers. Applications answer anything: what has another type than expected is no value.
namespace AtspiReply {
std::optional<int> integer(const DBusReply &reply);
std::optional<quint32> number(const DBusReply &reply);
std::optional<int> integerProperty(const DBusReply &reply);
std::optional<QString> text(const DBusReply &reply);
std::optional<QString> textProperty(const DBusReply &reply);
std::optional<AtspiObject> object(const DBusReply &reply);
std::optional<AtspiObject> objectProperty(const DBusReply &reply);
/// At most `limit` of them.
QList<AtspiObject> objects(const DBusReply &reply, int limit);
/// The bits of the object's states; 0 where it has none.
quint64 states(const DBusReply &reply);
std::optional<AtspiTextRange> range(const DBusReply &reply);
/// Four numbers x, y, width, height, with or without a structure around them.
std::optional<QRect> rectangle(const DBusReply &reply);
} // namespace AtspiReply

} // namespace tovi
