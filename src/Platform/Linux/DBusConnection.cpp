// SPDX-License-Identifier: MIT
#include "Platform/Linux/DBusConnection.h"

#include <cerrno>
#include <cstdarg>

#include <systemd/sd-bus.h>

namespace tovi {

namespace {

/// sd-bus takes 0 for "the default of 25 s", so an expired deadline still is one microsecond.
quint64 microsecondsLeft(const QDeadlineTimer &deadline)
{
    return static_cast<quint64>(std::max<qint64>(deadline.remainingTimeNSecs() / 1000, 1));
}

DBusStatus statusOfErrorReply(const sd_bus_error &error)
{
    for (const char *name : {SD_BUS_ERROR_UNKNOWN_METHOD, SD_BUS_ERROR_UNKNOWN_INTERFACE,
                             SD_BUS_ERROR_UNKNOWN_PROPERTY, SD_BUS_ERROR_NOT_SUPPORTED}) {
        if (sd_bus_error_has_name(&error, name))
            return DBusStatus::Unsupported;
    }
    return DBusStatus::Failed;
}

DBusReply replyOf(sd_bus_message *message)
{
    if (const sd_bus_error *error = sd_bus_message_get_error(message))
        return {statusOfErrorReply(*error), nullptr};
    return {DBusStatus::Ok, DBusMessage(sd_bus_message_ref(message))};
}

struct Pending
{
    DBusReply reply{DBusStatus::TimedOut, nullptr};
    sd_bus_slot *slot = nullptr;
    int *open = nullptr;
};

int receive(sd_bus_message *message, void *userData, sd_bus_error *)
{
    auto *pending = static_cast<Pending *>(userData);
    pending->reply = replyOf(message);
    --*pending->open;
    return 0;
}

} // namespace

void DBusUnref::operator()(sd_bus_message *message) const
{
    sd_bus_message_unref(message);
}

void DBusUnref::operator()(sd_bus *bus) const
{
    // Without flushing: a bus that does not read must not hold this thread up.
    sd_bus_close(bus);
    sd_bus_unref(bus);
}

std::unique_ptr<DBusConnection> DBusConnection::open(const QByteArray &address, QDeadlineTimer deadline)
{
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return nullptr;
    std::unique_ptr<DBusConnection> connection(new DBusConnection(bus));
    if (sd_bus_set_address(bus, address.constData()) < 0 || sd_bus_set_bus_client(bus, true) < 0 ||
        sd_bus_start(bus) < 0)
        return nullptr;
    while (sd_bus_is_ready(bus) == 0) {
        const int processed = sd_bus_process(bus, nullptr);
        if (processed < 0 || deadline.hasExpired())
            return nullptr;
        if (processed == 0)
            sd_bus_wait(bus, microsecondsLeft(deadline));
    }
    return sd_bus_is_ready(bus) > 0 ? std::move(connection) : nullptr;
}

bool DBusConnection::drain(QDeadlineTimer deadline)
{
    for (;;) {
        const int processed = sd_bus_process(m_bus.get(), nullptr);
        if (processed < 0 || sd_bus_is_open(m_bus.get()) <= 0)
            return false;
        if (processed == 0 || deadline.hasExpired())
            return true;
    }
}

DBusMessage DBusConnection::newMethod(const char *destination, const char *path, const char *interface,
                                      const char *member)
{
    sd_bus_message *message = nullptr;
    if (sd_bus_message_new_method_call(m_bus.get(), &message, destination, path, interface, member) < 0)
        return nullptr;
    sd_bus_message_set_auto_start(message, false);
    return DBusMessage(message);
}

void DBusConnection::append(DBusMessage &message, const char *signature, ...)
{
    if (!message)
        return;
    va_list arguments;
    va_start(arguments, signature);
    if (sd_bus_message_appendv(message.get(), signature, arguments) < 0)
        message.reset();
    va_end(arguments);
}

DBusReply DBusConnection::call(const DBusMessage &message, QDeadlineTimer deadline)
{
    if (!message)
        return {DBusStatus::Failed, nullptr};
    if (deadline.hasExpired())
        return {DBusStatus::TimedOut, nullptr};
    sd_bus_error error{};
    sd_bus_message *answer = nullptr;
    const int result = sd_bus_call(m_bus.get(), message.get(), microsecondsLeft(deadline), &error, &answer);
    DBusReply reply{DBusStatus::Ok, DBusMessage(answer)};
    if (result < 0) {
        if (sd_bus_is_open(m_bus.get()) <= 0)
            reply.status = DBusStatus::Disconnected;
        else
            reply.status = result == -ETIMEDOUT ? DBusStatus::TimedOut : statusOfErrorReply(error);
    }
    sd_bus_error_free(&error);
    return reply;
}

std::vector<DBusReply> DBusConnection::callAll(const std::vector<DBusMessage> &messages,
                                               QDeadlineTimer deadline)
{
    std::vector<DBusReply> replies(messages.size());
    // A bounded window: neither side's queue grows beyond it, whatever the number of messages.
    constexpr std::size_t windowSize = 64;
    for (std::size_t first = 0; first < messages.size(); first += windowSize) {
        const std::size_t count = std::min(windowSize, messages.size() - first);
        std::vector<Pending> window(count);
        int open = 0;
        for (std::size_t i = 0; i < count; ++i) {
            window[i].open = &open;
            const DBusMessage &message = messages[first + i];
            // The deadline is kept here: the library's own time-outs read like an answer of the peer.
            if (!message || sd_bus_call_async(m_bus.get(), &window[i].slot, message.get(), receive,
                                              &window[i], UINT64_MAX) < 0)
                window[i].reply.status = DBusStatus::Failed;
            else
                ++open;
        }
        bool connected = true;
        while (connected && open > 0 && !deadline.hasExpired()) {
            const int processed = sd_bus_process(m_bus.get(), nullptr);
            connected = processed >= 0 && sd_bus_is_open(m_bus.get()) > 0;
            if (processed == 0)
                sd_bus_wait(m_bus.get(), microsecondsLeft(deadline));
        }
        for (std::size_t i = 0; i < count; ++i) {
            sd_bus_slot_unref(window[i].slot);
            replies[first + i] = std::move(window[i].reply);
            if (!connected && replies[first + i].status == DBusStatus::TimedOut)
                replies[first + i].status = DBusStatus::Disconnected;
        }
        if (open > 0) {
            for (std::size_t i = first + count; i < messages.size(); ++i)
                replies[i].status = connected ? DBusStatus::TimedOut : DBusStatus::Disconnected;
            break;
        }
    }
    return replies;
}

void DBusConnection::send(const DBusMessage &message)
{
    if (!message)
        return;
    sd_bus_message_set_expect_reply(message.get(), false);
    sd_bus_send(m_bus.get(), message.get(), nullptr);
}

QByteArray DBusConnection::busIdentifier() const
{
    sd_id128_t id;
    if (sd_bus_get_bus_id(m_bus.get(), &id) < 0)
        return {};
    return QByteArray(reinterpret_cast<const char *>(id.bytes), sizeof id.bytes);
}

} // namespace tovi
