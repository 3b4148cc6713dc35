// SPDX-License-Identifier: MIT
#include "ScriptedServer.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTemporaryDir>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tovi {

namespace {

constexpr int noLimit = -1;

/// Waits for more bytes; false when the client has gone.
bool receive(QSslSocket &socket, QByteArray &bytes)
{
    if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(noLimit))
        return false;
    bytes += socket.readAll();
    return true;
}

} // namespace

QByteArray ScriptedServer::Request::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

bool ScriptedServer::Reply::send(const QByteArray &bytes)
{
    m_socket.write(bytes);
    while (m_socket.bytesToWrite() > 0 || m_socket.encryptedBytesToWrite() > 0) {
        if (!m_socket.waitForBytesWritten(noLimit))
            return false;
    }
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

bool ScriptedServer::Reply::answer(int status, const QByteArray &body, const QList<QByteArray> &headers)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\n";
    for (const QByteArray &line : headers)
        head += line + "\r\n";
    return send(head + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

bool ScriptedServer::Reply::beginStream(int status, const QList<QByteArray> &headers)
{
    QByteArray head = "HTTP/1.1 " + QByteArray::number(status) +
                      " Scripted\r\nContent-Type: text/event-stream\r\nTransfer-Encoding: chunked\r\n";
    for (const QByteArray &line : headers)
        head += line + "\r\n";
    return send(head + "\r\n");
}

bool ScriptedServer::Reply::chunk(const QByteArray &bytes)
{
    return send(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
}

bool ScriptedServer::Reply::endStream()
{
    return send("0\r\n\r\n");
}

void ScriptedServer::Reply::close()
{
    m_socket.disconnectFromHost();
    if (m_socket.state() != QAbstractSocket::UnconnectedState)
        m_socket.waitForDisconnected(noLimit);
}

void ScriptedServer::Reply::reset()
{
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(int(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    m_socket.abort();
}

void ScriptedServer::Reply::stall()
{
    QByteArray ignored;
    while (receive(m_socket, ignored))
        ignored.clear();
}

ScriptedServer::Tls ScriptedServer::Tls::make()
{
    const QTemporaryDir folder;
    const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
    const QString key = folder.filePath(QStringLiteral("key.pem"));
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  QStringLiteral("req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=test "
                                 "-addext subjectAltName=IP:127.0.0.1 -out %1 -keyout %2")
                      .arg(certificate, key)
                      .split(u' '));
    openssl.waitForFinished();
    const auto contents = [](const QString &path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    return {contents(certificate), contents(key)};
}

ScriptedServer::ScriptedServer(Handler handler, const std::optional<Tls> &tls)
    : m_handler(std::move(handler))
    , m_tls(tls)
    , m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{.sin_family = AF_INET, .sin_addr = {htonl(INADDR_LOOPBACK)}};
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    if (::bind(m_listener, generic, size) != 0 || ::listen(m_listener, 64) != 0 ||
        ::getsockname(m_listener, generic, &size) != 0)
        return;
    m_port = ntohs(address.sin_port);
    m_acceptor = std::thread([this] { acceptAll(); });
}

ScriptedServer::~ScriptedServer()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_isEnding = true;
        for (const int descriptor : m_open)
            ::shutdown(descriptor, SHUT_RDWR);
    }
    ::shutdown(m_listener, SHUT_RDWR);
    if (m_acceptor.joinable())
        m_acceptor.join();
    ::close(m_listener);
    for (std::thread &connection : m_connections)
        connection.join();
}

QString ScriptedServer::origin() const
{
    if (m_port == 0)
        return {};
    return QStringLiteral("%1://127.0.0.1:%2").arg(QLatin1String(m_tls ? "https" : "http")).arg(m_port);
}

int ScriptedServer::connectionCount() const
{
    const std::scoped_lock lock(m_mutex);
    return int(m_connections.size());
}

QList<ScriptedServer::Request> ScriptedServer::requests() const
{
    const std::scoped_lock lock(m_mutex);
    return m_requests;
}

void ScriptedServer::acceptAll()
{
    for (;;) {
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (descriptor < 0)
            return;
        const std::scoped_lock lock(m_mutex);
        if (m_isEnding) {
            ::close(descriptor);
            return;
        }
        m_open.insert(descriptor);
        const int number = int(m_connections.size()) + 1;
        m_connections.emplace_back([this, descriptor, number] { serve(descriptor, number); });
    }
}

void ScriptedServer::serve(int descriptor, int number)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    {
        QSslSocket socket;
        socket.setSocketDescriptor(descriptor);
        if (m_tls) {
            socket.setLocalCertificate(QSslCertificate(m_tls->certificate));
            socket.setPrivateKey(QSslKey(m_tls->key, QSsl::Rsa));
            socket.startServerEncryption();
        }
        if (!m_tls || socket.waitForEncrypted(noLimit)) {
            while (serveOne(socket, number)) {
            }
        }
        // Before the socket closes it: the number may be another's then.
        const std::scoped_lock lock(m_mutex);
        m_open.erase(descriptor);
        socket.abort();
    }
}

bool ScriptedServer::serveOne(QSslSocket &socket, int number)
{
    QByteArray bytes;
    qsizetype headEnd = -1;
    while ((headEnd = bytes.indexOf("\r\n\r\n")) < 0) {
        if (!receive(socket, bytes))
            return false;
    }
    Request request;
    request.connection = number;
    const QList<QByteArray> lines = bytes.first(headEnd).replace("\r\n", "\n").split('\n');
    const QList<QByteArray> words = lines.first().split(' ');
    request.method = words.value(0);
    request.target = words.value(1);
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        // One blank after the colon is the client's habit, more of them are the value's.
        request.headers.emplaceBack(line.first(colon),
                                    line.sliced(colon + (line.mid(colon, 2) == ": " ? 2 : 1)));
    }
    const qsizetype length = request.header("Content-Length").toLongLong();
    bytes.remove(0, headEnd + 4);
    while (bytes.size() < length) {
        if (!receive(socket, bytes))
            return false;
    }
    request.body = bytes.first(length);
    {
        const std::scoped_lock lock(m_mutex);
        m_requests << request;
    }
    Reply reply(socket);
    m_handler(request, reply);
    return socket.state() == QAbstractSocket::ConnectedState;
}

} // namespace tovi
