// SPDX-License-Identifier: MIT
#include "Platform/Linux/AccessibilityBus.h"

#include <cstring>
#include <ctime>

#include <poll.h>
#include <systemd/sd-bus.h>

namespace tovi {

namespace {

constexpr char busName[] = "org.a11y.Bus";
constexpr char busPath[] = "/org/a11y/bus";
constexpr char statusInterface[] = "org.a11y.Status";
constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

std::chrono::microseconds monotonicNow()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::microseconds(now.tv_nsec / 1000);
}

} // namespace

AccessibilityBus::AccessibilityBus()
{
    m_timeout.setSingleShot(true);
    connect(&m_timeout, &QTimer::timeout, this, &AccessibilityBus::process);
    // Not here: making the connection costs a millisecond that the start of the program need not wait for.
    const std::scoped_lock lock(m_state->mutex);
    m_state->owner = this;
    m_state->refreshLater();
}

AccessibilityBus::~AccessibilityBus()
{
    disconnectFromSession();
    const std::scoped_lock lock(m_state->mutex);
    m_state->owner = nullptr;
}

bool AccessibilityBus::isEnabled()
{
    const std::scoped_lock lock(m_state->mutex);
    if (m_state->address.isEmpty())
        m_state->refreshLater();
    return m_state->enabled && !m_state->address.isEmpty();
}

std::function<QByteArray()> AccessibilityBus::addressReader() const
{
    return [state = m_state] {
        const std::scoped_lock lock(state->mutex);
        if (state->address.isEmpty())
            state->refreshLater();
        return state->address;
    };
}

void AccessibilityBus::enable()
{
    m_enableWanted = true;
    refresh();
}

void AccessibilityBus::State::refreshLater()
{
    if (!owner || std::exchange(refreshQueued, true))
        return;
    QMetaObject::invokeMethod(
        owner,
        [self = owner] {
            {
                const std::scoped_lock lock(self->m_state->mutex);
                self->m_state->refreshQueued = false;
            }
            self->refresh();
        },
        Qt::QueuedConnection);
}

void AccessibilityBus::refresh()
{
    if (!m_bus)
        connectToSession();
    if (!m_bus)
        return;
    if (m_enableWanted) {
        m_enableWanted = false;
        DBusMessage message = method(propertiesInterface, "Set");
        sd_bus_message_append(message.get(), "ssv", statusInterface, "IsEnabled", "b", 1);
        ask(message, [](sd_bus_message *, void *userData, sd_bus_error *) {
            auto *self = static_cast<AccessibilityBus *>(userData);
            --self->m_openQuestions;
            self->askEnabled();
            self->askAddress();
            return 0;
        });
    } else if (m_openQuestions == 0) {
        askAddress();
        askEnabled();
    }
    updateWatches();
}

void AccessibilityBus::connectToSession()
{
    sd_bus *bus = nullptr;
    if (sd_bus_open_user(&bus) < 0)
        return;
    m_bus.reset(bus);
    // Only this name's changes: others come and go all the time, and each would wake the program.
    sd_bus_add_match_async(
        bus, nullptr,
        "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
        "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='org.a11y.Bus'",
        [](sd_bus_message *message, void *userData, sd_bus_error *) {
            auto *self = static_cast<AccessibilityBus *>(userData);
            const char *name = nullptr;
            const char *before = nullptr;
            const char *after = nullptr;
            if (sd_bus_message_read(message, "sss", &name, &before, &after) < 0 ||
                std::strcmp(name, busName) != 0)
                return 0;
            self->setAddress({});
            self->setEnabled(false);
            if (*after) {
                self->askAddress();
                self->askEnabled();
            }
            return 0;
        },
        nullptr, this);
    sd_bus_match_signal_async(
        bus, nullptr, busName, busPath, propertiesInterface, "PropertiesChanged",
        [](sd_bus_message *, void *userData, sd_bus_error *) {
            static_cast<AccessibilityBus *>(userData)->askEnabled();
            return 0;
        },
        nullptr, this);
}

void AccessibilityBus::disconnectFromSession()
{
    // Not deleted at once: this may run inside a notifier's own signal.
    for (QSocketNotifier *notifier : {m_readable.release(), m_writable.release()}) {
        if (notifier) {
            notifier->setEnabled(false);
            notifier->deleteLater();
        }
    }
    m_timeout.stop();
    m_bus.reset();
    m_openQuestions = 0;
    setAddress({});
    setEnabled(false);
}

DBusMessage AccessibilityBus::method(const char *interface, const char *member) const
{
    sd_bus_message *message = nullptr;
    sd_bus_message_new_method_call(m_bus.get(), &message, busName, busPath, interface, member);
    return DBusMessage(message);
}

void AccessibilityBus::ask(const DBusMessage &message, sd_bus_message_handler_t handler)
{
    if (!message)
        return;
    if (sd_bus_call_async(m_bus.get(), nullptr, message.get(), handler, this, 0) >= 0)
        ++m_openQuestions;
}

void AccessibilityBus::askAddress()
{
    ask(method(busName, "GetAddress"), [](sd_bus_message *message, void *userData, sd_bus_error *) {
        auto *self = static_cast<AccessibilityBus *>(userData);
        --self->m_openQuestions;
        const char *address = "";
        if (!sd_bus_message_get_error(message))
            sd_bus_message_read(message, "s", &address);
        self->setAddress(address);
        return 0;
    });
}

void AccessibilityBus::askEnabled()
{
    DBusMessage message = method(propertiesInterface, "Get");
    sd_bus_message_append(message.get(), "ss", statusInterface, "IsEnabled");
    ask(message, [](sd_bus_message *answer, void *userData, sd_bus_error *) {
        auto *self = static_cast<AccessibilityBus *>(userData);
        --self->m_openQuestions;
        int enabled = 0;
        if (!sd_bus_message_get_error(answer))
            sd_bus_message_read(answer, "v", "b", &enabled);
        self->setEnabled(enabled != 0);
        return 0;
    });
}

void AccessibilityBus::process()
{
    if (!m_bus)
        return;
    int result = 0;
    do {
        result = sd_bus_process(m_bus.get(), nullptr);
    } while (result > 0);
    if (result < 0 || sd_bus_is_open(m_bus.get()) <= 0)
        disconnectFromSession();
    else
        updateWatches();
}

void AccessibilityBus::updateWatches()
{
    const int fd = sd_bus_get_fd(m_bus.get());
    if (!m_readable || m_readable->socket() != fd) {
        m_readable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
        m_writable = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
        connect(m_readable.get(), &QSocketNotifier::activated, this, &AccessibilityBus::process);
        connect(m_writable.get(), &QSocketNotifier::activated, this, &AccessibilityBus::process);
    }
    const int events = sd_bus_get_events(m_bus.get());
    m_readable->setEnabled(events > 0 && (events & POLLIN));
    m_writable->setEnabled(events > 0 && (events & POLLOUT));

    uint64_t timeout = UINT64_MAX;
    if (sd_bus_get_timeout(m_bus.get(), &timeout) < 0 || timeout == UINT64_MAX) {
        m_timeout.stop();
        return;
    }
    const auto left = std::chrono::microseconds(timeout) - monotonicNow();
    m_timeout.start(
        std::max(std::chrono::ceil<std::chrono::milliseconds>(left), std::chrono::milliseconds(0)));
}

void AccessibilityBus::setAddress(const QByteArray &address)
{
    const std::scoped_lock lock(m_state->mutex);
    m_state->address = address;
}

void AccessibilityBus::setEnabled(bool enabled)
{
    const std::scoped_lock lock(m_state->mutex);
    m_state->enabled = enabled;
}

} // namespace tovi
