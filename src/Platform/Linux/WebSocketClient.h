// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "Platform/Linux/LoopbackConnection.h"
#include "Platform/Linux/WebSocketFrames.h"

namespace tovi {

/// One conversation in text messages with a WebSocket server on this machine (RFC 6455), for a thread that
/// may block. All of it lasts until the deadline at most; after that, or an error, everything answers
/// nothing.
class WebSocketClient
{
public:
    explicit WebSocketClient(const QDeadlineTimer &deadline)
        : m_connection(deadline)
    {}
    ~WebSocketClient();

    bool open(quint16 port, const QByteArray &path);
    bool isOpen() const { return m_isOpen; }
    bool send(const QByteArray &text);
    std::optional<QByteArray> receive();

private:
    bool sendFrame(WebSocketOpcode opcode, const QByteArray &payload);

    LoopbackConnection m_connection;
    WebSocketReader m_reader;
    bool m_isOpen = false;
};

} // namespace tovi
