// SPDX-License-Identifier: MIT
#include "Platform/Linux/LoopbackConnection.h"

#include <cerrno>
#include <ctime>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tovi {

bool LoopbackConnection::open(quint16 port)
{
    return connectTo(AF_INET, port) || connectTo(AF_INET6, port);
}

bool LoopbackConnection::connectTo(int family, quint16 port)
{
    close();
    m_socket = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (m_socket < 0)
        return false;
    const int on = 1;
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);

    sockaddr_in v4{};
    v4.sin_family = AF_INET;
    v4.sin_port = htons(port);
    v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in6 v6{};
    v6.sin6_family = AF_INET6;
    v6.sin6_port = htons(port);
    v6.sin6_addr = in6addr_loopback;
    const bool isV4 = family == AF_INET;
    const auto *address =
        isV4 ? reinterpret_cast<const sockaddr *>(&v4) : reinterpret_cast<const sockaddr *>(&v6);
    const auto length = static_cast<socklen_t>(isV4 ? sizeof v4 : sizeof v6);
    if (::connect(m_socket, address, length) == 0)
        return true;
    int error = errno;
    socklen_t size = sizeof error;
    if (error == EINPROGRESS && waitFor(POLLOUT) &&
        ::getsockopt(m_socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0)
        return true;
    close();
    return false;
}

void LoopbackConnection::close()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
}

bool LoopbackConnection::write(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        if (!waitFor(POLLOUT))
            return false;
        const ssize_t written =
            ::send(m_socket, bytes.constData() + done, size_t(bytes.size() - done), MSG_NOSIGNAL);
        if (written >= 0)
            done += written;
        else if (errno != EINTR && errno != EAGAIN)
            return false;
    }
    return true;
}

QByteArray LoopbackConnection::read()
{
    QByteArray bytes(64 << 10, Qt::Uninitialized);
    while (waitFor(POLLIN)) {
        const ssize_t count = ::recv(m_socket, bytes.data(), size_t(bytes.size()), 0);
        if (count >= 0) {
            bytes.truncate(count);
            return bytes;
        }
        if (errno != EINTR && errno != EAGAIN)
            break;
    }
    return {};
}

bool LoopbackConnection::waitFor(short events)
{
    while (m_socket >= 0) {
        const qint64 left = m_deadline.remainingTimeNSecs();
        if (left <= 0)
            return false;
        pollfd descriptor{m_socket, events, 0};
        const timespec wait{left / 1'000'000'000, left % 1'000'000'000};
        const int ready = ::ppoll(&descriptor, 1, &wait, nullptr);
        if (ready > 0)
            return true;
        if (ready < 0 && errno != EINTR)
            return false;
    }
    return false;
}

} // namespace tovi
