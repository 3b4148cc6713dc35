// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>

namespace tovi {

/// A TCP connection to a program on this machine, for a thread that may block: no wait goes beyond the
/// deadline. Without a connection nothing is written or read. One thread.
class LoopbackConnection
{
public:
    explicit LoopbackConnection(const QDeadlineTimer &deadline)
        : m_deadline(deadline)
    {}
    ~LoopbackConnection() { close(); }
    LoopbackConnection(const LoopbackConnection &) = delete;

    /// False when nobody listens there, at once.
    bool open(quint16 port);
    void close();
    bool write(const QByteArray &bytes);
    /// What has come, at least one byte; empty at the end, after an error and after the deadline.
    QByteArray read();

private:
    bool connectTo(int family, quint16 port);
    bool waitFor(short events);

    QDeadlineTimer m_deadline;
    int m_socket = -1;
};

} // namespace tovi
