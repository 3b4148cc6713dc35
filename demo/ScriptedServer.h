// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include <QByteArray>
#include <QList>
#include <QString>

class QSslSocket;

namespace tovi {

/// An HTTP server on the loopback interface that does what a script says, well behaved or not: for the tests,
/// the benchmark and the demonstration.
class ScriptedServer
{
public:
    struct Request
    {
        QByteArray method;
        QByteArray target; ///< path and query as sent
        QList<std::pair<QByteArray, QByteArray>> headers;
        QByteArray body;
        int connection = 0; ///< the connections' number, from 1

        /// The value of a header, by any case of its name; null when it was not sent.
        QByteArray header(const QByteArray &name) const;
    };

    /// The answer to one request. What is sent goes out at once.
    class Reply
    {
    public:
        /// Bytes as they are. False when the client has gone.
        bool send(const QByteArray &bytes);
        /// A whole answer with its length; `headers` holds "Name: value" lines.
        bool answer(int status, const QByteArray &body, const QList<QByteArray> &headers = {});
        /// The head of a chunked answer, then its pieces and its end.
        bool beginStream(int status = 200, const QList<QByteArray> &headers = {});
        bool chunk(const QByteArray &bytes);
        bool endStream();
        /// Ends the connection in an orderly way, or as a crash does.
        void close();
        void reset();
        /// Says nothing more until the client goes.
        void stall();

    private:
        friend class ScriptedServer;
        explicit Reply(QSslSocket &socket)
            : m_socket(socket)
        {}
        QSslSocket &m_socket;
    };

    /// Called on the connection's own thread, which may block.
    using Handler = std::function<void(const Request &request, Reply &reply)>;
    struct Tls
    {
        QByteArray certificate; ///< PEM
        QByteArray key;         ///< PEM, RSA

        /// A fresh one for the loopback address that vouches for itself, made with the openssl program; empty
        /// where that fails.
        static Tls make();
    };

    explicit ScriptedServer(Handler handler, const std::optional<Tls> &tls = std::nullopt);
    /// Closes all connections; a handler that waits for something else must have been let go before.
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer &) = delete;

    /// "http://127.0.0.1:port" or the same with https; empty when it could not start.
    QString origin() const;
    quint16 port() const { return m_port; }
    // Any thread.
    int connectionCount() const;
    QList<Request> requests() const;

private:
    void acceptAll();
    void serve(int descriptor, int number);
    bool serveOne(QSslSocket &socket, int number);

    const Handler m_handler;
    const std::optional<Tls> m_tls;
    int m_listener = -1;
    quint16 m_port = 0;
    std::thread m_acceptor;
    mutable std::mutex m_mutex; // guards the rest
    std::vector<std::thread> m_connections;
    std::set<int> m_open;
    QList<Request> m_requests;
    bool m_isEnding = false;
};

} // namespace tovi
