// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>

struct sd_bus;
struct sd_bus_message;

namespace tovi {

struct DBusUnref
{
    void operator()(sd_bus_message *message) const;
    void operator()(sd_bus *bus) const;
};
using DBusMessage = std::unique_ptr<sd_bus_message, DBusUnref>;

enum class DBusStatus {
    Ok,
    Unsupported,  ///< the peer has no such object, interface, method or property
    Failed,       ///< the peer is gone or answered with another error
    TimedOut,     ///< no answer before the deadline
    Disconnected, ///< the bus itself is gone
};

struct DBusReply
{
    DBusStatus status = DBusStatus::Disconnected;
    DBusMessage message; ///< only with Ok
};

/// A private connection to a message bus for blocking calls with deadlines. It subscribes to nothing, so it
/// costs nothing while unused. One thread at a time; nothing here needs an event loop.
class DBusConnection
{
public:
    /// Connects and says hello; null when that does not succeed before the deadline.
    static std::unique_ptr<DBusConnection> open(const QByteArray &address, QDeadlineTimer deadline);

    /// Throws away what arrived uncalled for (answers that came too late). False when the bus is gone.
    bool drain(QDeadlineTimer deadline);

    /// A method call with `arguments` of basic types, matching the D-Bus signature.
    template <class... Arguments>
    DBusMessage method(const char *destination, const char *path, const char *interface, const char *member,
                       const char *signature = "", Arguments... arguments)
    {
        DBusMessage message = newMethod(destination, path, interface, member);
        append(message, signature, arguments...);
        return message;
    }

    DBusReply call(const DBusMessage &message, QDeadlineTimer deadline);
    /// Sends all messages before it waits for the answers, which come back in the messages' order.
    std::vector<DBusReply> callAll(const std::vector<DBusMessage> &messages, QDeadlineTimer deadline);
    /// Sends a call and does not wait for its answer.
    void send(const DBusMessage &message);

    /// Tells one run of the bus from another: names are unique only within a run.
    QByteArray busIdentifier() const;

private:
    explicit DBusConnection(sd_bus *bus)
        : m_bus(bus)
    {}
    DBusMessage newMethod(const char *destination, const char *path, const char *interface,
                          const char *member);
    static void append(DBusMessage &message, const char *signature, ...);

    std::unique_ptr<sd_bus, DBusUnref> m_bus;
};

} // namespace tovi
