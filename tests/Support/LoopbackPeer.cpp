// SPDX-License-Identifier: MIT
#include "Support/LoopbackPeer.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tovi {

LoopbackPeer::LoopbackPeer(Handler handler)
    : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *plain = reinterpret_cast<sockaddr *>(&address);
    if (::bind(m_listener, plain, size) != 0 || ::listen(m_listener, 8) != 0 ||
        ::getsockname(m_listener, plain, &size) != 0)
        qFatal("cannot listen");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this, handler = std::move(handler)] {
        for (int socket; (socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            ++m_connections;
            const int on = 1;
            ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            Connection connection(socket);
            handler(connection);
            ::close(socket);
        }
    });
}

LoopbackPeer::~LoopbackPeer()
{
    ::shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    ::close(m_listener);
}

QByteArray LoopbackPeer::acceptance(const QByteArray &head)
{
    const QByteArray name = "Sec-WebSocket-Key: ";
    const qsizetype start = head.indexOf(name) + name.size();
    const QByteArray key = head.mid(start, head.indexOf('\r', start) - start);
    return QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1)
        .toBase64();
}

QByteArray LoopbackPeer::frame(quint8 firstByte, const QByteArray &payload)
{
    QByteArray bytes(1, char(firstByte));
    if (payload.size() < 126)
        return bytes + char(payload.size()) + payload;
    const bool isLong = payload.size() > 0xffff;
    quint64 size = qToBigEndian(quint64(payload.size()));
    const auto *digits = reinterpret_cast<const char *>(&size);
    return bytes + char(isLong ? 127 : 126) + QByteArray(digits + (isLong ? 0 : 6), isLong ? 8 : 2) + payload;
}

void LoopbackPeer::Connection::write(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t count =
            ::send(m_socket, bytes.constData() + done, size_t(bytes.size() - done), MSG_NOSIGNAL);
        if (count <= 0)
            return;
        done += count;
    }
}

QByteArray LoopbackPeer::Connection::read(qsizetype size)
{
    QByteArray bytes(size, '\0');
    const ssize_t count = ::recv(m_socket, bytes.data(), size_t(size), MSG_WAITALL);
    return count == size ? bytes : QByteArray();
}

QByteArray LoopbackPeer::Connection::readHead()
{
    QByteArray head;
    while (!head.endsWith("\r\n\r\n")) {
        const QByteArray byte = read(1);
        if (byte.isEmpty())
            return {};
        head += byte;
    }
    return head;
}

QByteArray LoopbackPeer::Connection::acceptWebSocket(const QByteArray &more)
{
    const QByteArray head = readHead();
    write("HTTP/1.1 101 Switching\r\nUpgrade: WebSocket\r\nConnection: Upgrade\r\nsec-websocket-accept: " +
          acceptance(head) + "\r\n\r\n" + more);
    return head;
}

QByteArray LoopbackPeer::Connection::readFrame()
{
    const QByteArray start = read(2);
    if (start.isEmpty())
        return {};
    qsizetype size = start[1] & 0x7f;
    if (size == 126)
        size = qFromBigEndian<quint16>(read(2).constData());
    const QByteArray mask = read(4);
    QByteArray payload = size > 0 ? read(size) : QByteArray();
    for (qsizetype i = 0; i < payload.size(); ++i)
        payload[i] = char(payload[i] ^ mask[i % 4]);
    return start.left(1) + payload;
}

void LoopbackPeer::Connection::writeText(const QByteArray &text)
{
    write(frame(0x81, text));
}

} // namespace tovi
