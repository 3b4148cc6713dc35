// SPDX-License-Identifier: MIT
#include "Platform/Linux/WebSocketFrames.h"

#include <QtEndian>

namespace tovi {

namespace {

constexpr quint8 finalBit = 0x80, reservedBits = 0x70, opcodeBits = 0x0f, maskBit = 0x80, controlBit = 0x08;
constexpr quint8 longestShort = 125, twoByteLength = 126, eightByteLength = 127;

template <class T>
void appendBigEndian(QByteArray &bytes, T value)
{
    const T swapped = qToBigEndian(value);
    bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

} // namespace

QByteArray webSocketFrame(WebSocketOpcode opcode, const QByteArray &payload, quint32 mask)
{
    QByteArray frame;
    frame.append(char(finalBit | quint8(opcode)));
    if (payload.size() <= longestShort) {
        frame.append(char(maskBit | quint8(payload.size())));
    } else if (payload.size() <= 0xffff) {
        frame.append(char(maskBit | twoByteLength));
        appendBigEndian(frame, quint16(payload.size()));
    } else {
        frame.append(char(maskBit | eightByteLength));
        appendBigEndian(frame, quint64(payload.size()));
    }
    appendBigEndian(frame, mask);
    const qsizetype start = frame.size();
    frame.append(payload);
    for (qsizetype i = 0; i < payload.size(); ++i)
        frame[start + i] = char(quint8(frame[start + i]) ^ quint8(mask >> (24 - 8 * (i % 4))));
    return frame;
}

struct WebSocketReader::Header
{
    WebSocketOpcode opcode;
    bool isFinal;
    bool isPlain; ///< no reserved bit, no mask
    qsizetype size;
    quint64 payloadSize;
    bool isControl() const { return quint8(opcode) & controlBit; }
};

void WebSocketReader::append(const QByteArray &bytes)
{
    if (!m_end)
        m_buffer += bytes;
}

std::optional<WebSocketReader::Header> WebSocketReader::header() const
{
    const auto *bytes = reinterpret_cast<const uchar *>(m_buffer.constData());
    if (m_buffer.size() < 2)
        return std::nullopt;
    Header header{.opcode = WebSocketOpcode(bytes[0] & opcodeBits),
                  .isFinal = (bytes[0] & finalBit) != 0,
                  .isPlain = !(bytes[0] & reservedBits) && !(bytes[1] & maskBit),
                  .size = 2,
                  .payloadSize = quint64(bytes[1]) & ~quint64(maskBit)};
    if (header.payloadSize == twoByteLength) {
        header.size += 2;
        if (m_buffer.size() < header.size)
            return std::nullopt;
        header.payloadSize = qFromBigEndian<quint16>(bytes + 2);
    } else if (header.payloadSize == eightByteLength) {
        header.size += 8;
        if (m_buffer.size() < header.size)
            return std::nullopt;
        header.payloadSize = qFromBigEndian<quint64>(bytes + 2);
    }
    return header;
}

bool WebSocketReader::isAllowed(const Header &header) const
{
    if (!header.isPlain)
        return false;
    switch (header.opcode) {
    case WebSocketOpcode::Close:
    case WebSocketOpcode::Ping:
    case WebSocketOpcode::Pong:
        return header.isFinal && header.payloadSize <= longestShort;
    case WebSocketOpcode::Text:
        return !m_message && header.payloadSize <= quint64(sizeLimit);
    case WebSocketOpcode::Continuation:
        return m_message && header.payloadSize <= quint64(sizeLimit - m_message->size());
    case WebSocketOpcode::Binary:
        break;
    }
    return false;
}

std::optional<WebSocketReader::Event> WebSocketReader::next()
{
    if (m_end)
        return Event{*m_end, {}};
    while (const auto frame = header()) {
        if (!isAllowed(*frame))
            return end(Event::Kind::Failed);
        const qsizetype whole = frame->size + qsizetype(frame->payloadSize);
        if (m_buffer.size() < whole)
            return std::nullopt;
        QByteArray payload = m_buffer.mid(frame->size, qsizetype(frame->payloadSize));
        m_buffer.remove(0, whole);
        if (frame->opcode == WebSocketOpcode::Close)
            return end(Event::Kind::Close);
        if (frame->opcode == WebSocketOpcode::Ping)
            return Event{Event::Kind::Ping, payload};
        if (frame->isControl())
            continue;
        if (m_message)
            *m_message += payload;
        else
            m_message = std::move(payload);
        if (frame->isFinal) {
            Event event{Event::Kind::Text, std::move(*m_message)};
            m_message.reset();
            return event;
        }
    }
    return std::nullopt;
}

std::optional<WebSocketReader::Event> WebSocketReader::end(Event::Kind kind)
{
    m_end = kind;
    m_buffer.clear();
    m_message.reset();
    return Event{kind, {}};
}

} // namespace tovi
