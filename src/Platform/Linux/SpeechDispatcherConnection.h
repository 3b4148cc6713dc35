// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "Platform/Linux/SpeechDispatcherLibrary.h"

namespace tovi {

struct SpeechUtterance;

/// The connection to speech-dispatcher, one in a process. Its operations wait for the daemon's answer, for
/// ever where the daemon hangs; breakOff() ends such a wait. One thread at a time, which must block SIGPIPE.
class SpeechDispatcherConnection
{
public:
    enum class Event { began, ended, cancelled };
    /// Called on a thread of the library, which must not be held up.
    using EventHandler = std::function<void(int message, Event event)>;

    SpeechDispatcherConnection() = default;
    ~SpeechDispatcherConnection() { close(); }
    SpeechDispatcherConnection(const SpeechDispatcherConnection &) = delete;

    /// Starts the daemon where none runs. False when there is none.
    bool open(EventHandler handler);
    void close();
    /// Whether it was opened and neither side has ended it.
    bool isOpen() const;

    /// The number that events tell of the message; none when the daemon refuses it.
    std::optional<int> say(const SpeechUtterance &utterance);
    /// Cuts off what is being read and drops what is queued.
    void cancel();
    /// Whether the daemon answers.
    bool answers();

    /// Ends the connection, whatever is waiting on it. Any thread.
    void breakOff();

private:
    const SpeechDispatcherLibrary *m_library = nullptr;
    SPDConnection *m_connection = nullptr;
    std::mutex m_socketMutex;
    int m_socket = -1;
};

} // namespace tovi
