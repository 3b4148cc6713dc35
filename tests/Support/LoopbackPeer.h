// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include <QByteArray>

namespace tovi {

/// A server on the loopback interface with a thread of its own. One connection after the other is handed to
/// the handler, which may block: what it waits for comes, or the client goes.
class LoopbackPeer
{
public:
    class Connection
    {
    public:
        explicit Connection(int socket)
            : m_socket(socket)
        {}
        void write(const QByteArray &bytes);
        /// An HTTP head with its empty line; empty when the client went.
        QByteArray readHead();
        /// Reads a head and answers it as a WebSocket server does, with `more` right behind. Returns the
        /// head.
        QByteArray acceptWebSocket(const QByteArray &more = {});
        /// The first byte of the client's next frame, then its unmasked content; empty when the client went.
        QByteArray readFrame();
        void writeText(const QByteArray &text);

    private:
        QByteArray read(qsizetype size);
        int m_socket;
    };
    using Handler = std::function<void(Connection &)>;

    explicit LoopbackPeer(Handler handler);
    ~LoopbackPeer();

    quint16 port() const { return m_port; }
    int connections() const { return m_connections; }
    /// The header's value for a client's key.
    static QByteArray acceptance(const QByteArray &head);
    /// A server's frame.
    static QByteArray frame(quint8 firstByte, const QByteArray &payload);

private:
    int m_listener;
    quint16 m_port = 0;
    std::atomic<int> m_connections = 0;
    std::thread m_thread;
};

} // namespace tovi
