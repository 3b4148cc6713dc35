// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <systemd/sd-bus.h>

#include "Platform/Linux/DBusConnection.h"

namespace tovi {

/// Keeps in memory whether the session's accessibility bus is on and where it is. Everything it does is
/// asynchronous on the main thread's event loop: nothing waits for the session bus, nothing polls. While
/// there is no bus, each question also starts a new attempt. Made and destroyed on the main thread.
class AccessibilityBus final : public QObject
{
public:
    AccessibilityBus();
    ~AccessibilityBus() override;

    /// Whether assistive programs may use the bus. Any thread.
    bool isEnabled();
    /// Tells where to connect to: nothing while that is not known. Any thread; may outlive this object.
    std::function<QByteArray()> addressReader() const;
    /// Switches the bus on for the session. Returns at once. Main thread.
    void enable();

private:
    /// What any thread may ask for.
    struct State
    {
        std::mutex mutex;
        AccessibilityBus *owner = nullptr;
        QByteArray address;
        bool enabled = false;
        bool refreshQueued = false;

        /// With the mutex held.
        void refreshLater();
    };

    void refresh();
    void connectToSession();
    void disconnectFromSession();
    void askAddress();
    void askEnabled();
    void ask(const DBusMessage &message, sd_bus_message_handler_t handler);
    void process();
    void updateWatches();
    void setAddress(const QByteArray &address);
    void setEnabled(bool enabled);

    DBusMessage method(const char *interface, const char *member) const;

    std::unique_ptr<sd_bus, DBusUnref> m_bus;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
    QTimer m_timeout;
    int m_openQuestions = 0;
    bool m_enableWanted = false;

    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace tovi
