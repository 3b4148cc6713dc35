// SPDX-License-Identifier: MIT
#include "Platform/Linux/SpeechDispatcherConnection.h"

#include <cmath>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Platform/SpeechSynthesizer.h"

namespace tovi {

namespace {

/// The library tells its callbacks only a number of the connection, and crashes at a daemon that goes while
/// it is asked for this number. So events belong to the connection that was opened last.
struct Receiver
{
    std::mutex mutex;
    const SpeechDispatcherConnection *connection = nullptr;
    SpeechDispatcherConnection::EventHandler handler;
};

Receiver &receiver()
{
    static Receiver instance;
    return instance;
}

template <SpeechDispatcherConnection::Event event>
void report(size_t message, size_t, SPDNotificationType)
{
    // Closing cancels the library's thread, which must not unwind C++ code.
    int oldState = 0;
    ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldState);
    {
        const std::scoped_lock lock(receiver().mutex);
        if (receiver().handler)
            receiver().handler(static_cast<int>(message), event);
    }
    ::pthread_setcancelstate(oldState, nullptr);
}

} // namespace

bool SpeechDispatcherConnection::open(EventHandler handler)
{
    close();
    m_library = SpeechDispatcherLibrary::load();
    if (!m_library)
        return false;
    char *error = nullptr;
    m_connection = m_library->open("tovi", "speech", nullptr, SPD_MODE_THREADED, nullptr, 1, &error);
    std::free(error);
    if (!m_connection)
        return false;
    {
        // The library closes its own when the daemon goes, and the number may soon mean another file.
        const std::scoped_lock lock(m_socketMutex);
        m_socket = ::fcntl(m_connection->socket, F_DUPFD_CLOEXEC, 0);
    }
    {
        const std::scoped_lock lock(receiver().mutex);
        receiver().connection = this;
        receiver().handler = std::move(handler);
    }
    m_connection->callback_begin = report<Event::began>;
    m_connection->callback_end = report<Event::ended>;
    m_connection->callback_cancel = report<Event::cancelled>;
    for (const SPDNotification notification : {SPD_BEGIN, SPD_END, SPD_CANCEL}) {
        if (m_library->setNotificationOn(m_connection, notification) != 0) {
            close();
            return false;
        }
    }
    return true;
}

void SpeechDispatcherConnection::close()
{
    if (!m_connection)
        return;
    {
        const std::scoped_lock lock(receiver().mutex);
        if (receiver().connection == this)
            receiver().handler = nullptr;
    }
    {
        const std::scoped_lock lock(m_socketMutex);
        if (m_socket >= 0)
            ::close(m_socket);
        m_socket = -1;
    }
    m_library->close(m_connection);
    m_connection = nullptr;
}

bool SpeechDispatcherConnection::isOpen() const
{
    if (m_socket < 0)
        return false;
    // A call on a connection that has ended may never return.
    pollfd socket{.fd = m_socket, .events = POLLRDHUP, .revents = 0};
    return ::poll(&socket, 1, 0) == 0;
}

std::optional<int> SpeechDispatcherConnection::say(const SpeechUtterance &utterance)
{
    const int rate = std::clamp(static_cast<int>(std::lround((utterance.rate - 0.5) * 200)), -100, 100);
    QString text = utterance.text;
    text.remove(QChar(QChar::Null)); // would end it
    if (m_library->setVoiceRate(m_connection, rate) != 0)
        return {};
    // The daemon takes the default voice where it has none for the language.
    m_library->setLanguage(m_connection, utterance.language.toUtf8().constData());
    if (!isOpen())
        return {};
    const int message = m_library->say(m_connection, SPD_MESSAGE, text.toUtf8().constData());
    return message >= 0 ? std::optional(message) : std::nullopt;
}

void SpeechDispatcherConnection::cancel()
{
    m_library->cancel(m_connection);
}

bool SpeechDispatcherConnection::answers()
{
    return isOpen() && m_library->executeCommand(m_connection, "GET RATE") == 0;
}

void SpeechDispatcherConnection::breakOff()
{
    const std::scoped_lock lock(m_socketMutex);
    if (m_socket >= 0)
        ::shutdown(m_socket, SHUT_RDWR);
}

} // namespace tovi
