// SPDX-License-Identifier: MIT
#include "Translation/ChatStream.h"

#include <QJsonArray>
#include <QUtf8StringView>

#include "Json.h"
#include "Platform/URLSession.h"

namespace tovi {

namespace {

constexpr QByteArrayView fieldName("data:");

QByteArrayView trimmedOfBlanks(QByteArrayView text)
{
    const auto isBlankByte = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.isEmpty() && isBlankByte(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlankByte(text.back()))
        text.chop(1);
    return text;
}

/// The text in one event, empty where it has none.
QString deltaContent(QByteArrayView payload)
{
    // A damaged character costs that character, not the piece of text around it.
    const QUtf8StringView text(payload.data(), payload.size());
    const QByteArray json = text.isValidUtf8() ? payload.toByteArray() : text.toString().toUtf8();
    try {
        const QJsonValue first = decodeJson(json).toObject().value(QLatin1String("choices")).toArray().at(0);
        return first.toObject()
            .value(QLatin1String("delta"))
            .toObject()
            .value(QLatin1String("content"))
            .toString();
    } catch (const JSONError &) {
        return {};
    }
}

} // namespace

void LineSplitter::append(const QByteArray &piece)
{
    m_scanned -= m_start;
    m_bytes.remove(0, std::exchange(m_start, 0));
    m_bytes += piece;
}

void LineSplitter::finish()
{
    m_isFinished = true;
}

std::optional<QByteArray> LineSplitter::next()
{
    if (m_isAfterReturn && m_start < m_bytes.size()) {
        m_isAfterReturn = false;
        if (m_bytes.at(m_start) == '\n')
            m_scanned = ++m_start;
    }
    const auto from = m_bytes.cbegin() + m_scanned;
    const auto found = std::find_if(from, m_bytes.cend(), [](char c) { return c == '\n' || c == '\r'; });
    const qsizetype end = found - m_bytes.cbegin();
    const bool hasEnd = found != m_bytes.cend();
    if (end - m_start > longestLine)
        throw URLError(URLError::Code::dataLengthExceedsMaximum);
    m_scanned = end;
    if (!hasEnd && (!m_isFinished || end == m_start))
        return std::nullopt;
    QByteArray line = m_bytes.mid(m_start, end - m_start);
    m_isAfterReturn = hasEnd && *found == '\r';
    m_start = m_scanned = hasEnd ? end + 1 : end;
    if (std::exchange(m_isFirst, false) && line.startsWith("\xEF\xBB\xBF"))
        line.remove(0, 3);
    return line;
}

std::optional<QString> ChatStream::next()
{
    while (!m_isDone) {
        const auto line = m_lines.next();
        if (!line)
            return std::nullopt;
        if (!line->startsWith(fieldName))
            continue;
        const QByteArrayView payload = trimmedOfBlanks(QByteArrayView(*line).sliced(fieldName.size()));
        m_isDone = payload == QByteArrayView("[DONE]");
        if (payload.isEmpty() || m_isDone)
            continue;
        if (const QString text = deltaContent(payload); !text.isEmpty())
            return text;
    }
    return std::nullopt;
}

} // namespace tovi
