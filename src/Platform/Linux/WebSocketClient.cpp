// SPDX-License-Identifier: MIT
#include "Platform/Linux/WebSocketClient.h"

#include <QCryptographicHash>
#include <QList>
#include <QRandomGenerator>

namespace tovi {

namespace {

constexpr qsizetype headLimit = 16 << 10;

/// Whether the server understood: its answer to our key is one that no other kind of server gives.
bool accepts(const QByteArray &head, const QByteArray &key)
{
    const QByteArray wanted =
        QCryptographicHash::hash(key + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11", QCryptographicHash::Sha1)
            .toBase64();
    const QList<QByteArray> lines = head.split('\n');
    if (!lines.first().startsWith("HTTP/1.1 101 "))
        return false;
    bool isUpgraded = false, isAccepted = false;
    for (const QByteArray &line : lines.mid(1)) {
        const qsizetype colon = line.indexOf(':');
        const QByteArray name = line.left(colon).toLower();
        const QByteArray value = line.mid(colon + 1).trimmed();
        if (name == "upgrade")
            isUpgraded = value.compare("websocket", Qt::CaseInsensitive) == 0;
        else if (name == "sec-websocket-accept")
            isAccepted = value == wanted;
        else if (name == "sec-websocket-extensions" || name == "sec-websocket-protocol")
            return false; // we asked for none
    }
    return isUpgraded && isAccepted;
}

} // namespace

WebSocketClient::~WebSocketClient()
{
    if (m_isOpen)
        sendFrame(WebSocketOpcode::Close, {});
}

bool WebSocketClient::open(quint16 port, const QByteArray &path)
{
    quint32 random[4];
    QRandomGenerator::system()->fillRange(random);
    const QByteArray key = QByteArray(reinterpret_cast<const char *>(random), sizeof random).toBase64();
    // Without an Origin: browsers let no page in here.
    if (!m_connection.open(port) ||
        !m_connection.write("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port) +
                            "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
                            "Sec-WebSocket-Key: " +
                            key + "\r\n\r\n"))
        return false;
    QByteArray answer;
    qsizetype end = -1;
    while (end < 0) {
        const QByteArray bytes = m_connection.read();
        if (bytes.isEmpty() || answer.size() > headLimit)
            return false;
        answer += bytes;
        end = answer.indexOf("\r\n\r\n");
    }
    m_isOpen = accepts(answer.left(end), key);
    m_reader.append(answer.mid(end + 4));
    return m_isOpen;
}

bool WebSocketClient::send(const QByteArray &text)
{
    m_isOpen = m_isOpen && sendFrame(WebSocketOpcode::Text, text);
    return m_isOpen;
}

std::optional<QByteArray> WebSocketClient::receive()
{
    while (m_isOpen) {
        while (auto event = m_reader.next()) {
            switch (event->kind) {
            case WebSocketReader::Event::Kind::Text:
                return std::move(event->payload);
            case WebSocketReader::Event::Kind::Ping:
                sendFrame(WebSocketOpcode::Pong, event->payload);
                break;
            case WebSocketReader::Event::Kind::Close:
            case WebSocketReader::Event::Kind::Failed:
                sendFrame(WebSocketOpcode::Close, {});
                m_isOpen = false;
                return std::nullopt;
            }
        }
        const QByteArray bytes = m_connection.read();
        if (bytes.isEmpty())
            m_isOpen = false;
        m_reader.append(bytes);
    }
    return std::nullopt;
}

bool WebSocketClient::sendFrame(WebSocketOpcode opcode, const QByteArray &payload)
{
    return m_connection.write(webSocketFrame(opcode, payload, QRandomGenerator::global()->generate()));
}

} // namespace tovi
