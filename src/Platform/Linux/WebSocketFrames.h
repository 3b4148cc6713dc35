// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QByteArray>

namespace tovi {

enum class WebSocketOpcode : quint8 {
    Continuation = 0x0,
    Text = 0x1,
    Binary = 0x2,
    Close = 0x8,
    Ping = 0x9,
    Pong = 0xa,
};

/// One whole frame as a client sends it (RFC 6455, 5.2).
QByteArray webSocketFrame(WebSocketOpcode opcode, const QByteArray &payload, quint32 mask);

/// Takes apart what a WebSocket server sends, in pieces of any size.
class WebSocketReader
{
public:
    static constexpr qsizetype sizeLimit = 16 << 20; ///< of a message, in bytes

    struct Event
    {
        enum class Kind { Text, Ping, Close, Failed };
        Kind kind;
        QByteArray payload; ///< of a text (all its fragments) or a ping
    };

    void append(const QByteArray &bytes);
    /// None until more bytes come. Close and Failed (what came breaks the protocol, is binary or is too long)
    /// are final.
    std::optional<Event> next();

private:
    struct Header;
    std::optional<Header> header() const;
    std::optional<Event> end(Event::Kind kind);
    bool isAllowed(const Header &header) const;

    QByteArray m_buffer;
    std::optional<QByteArray> m_message; // the fragments so far
    std::optional<Event::Kind> m_end;
};

} // namespace tovi
