// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace tovi {

/// Takes a text stream apart into its lines: LF, CR and CR LF end one, wherever the pieces were cut.
class LineSplitter
{
public:
    /// In bytes. A server that sends more without a break does not send lines.
    static constexpr qsizetype longestLine = 1024 * 1024;

    void append(const QByteArray &piece);
    /// What is left without an end becomes the last line.
    void finish();
    /// The next complete line without its end, a byte order mark before the first one left out. Throws
    /// URLError when a line is too long.
    std::optional<QByteArray> next();

private:
    QByteArray m_bytes;
    qsizetype m_start = 0;   // of the next line
    qsizetype m_scanned = 0; // no end of it before
    bool m_isFirst = true;
    bool m_isAfterReturn = false;
    bool m_isFinished = false;
};

/// Reads the server-sent events of a streamed chat completion.
class ChatStream
{
public:
    void append(const QByteArray &piece) { m_lines.append(piece); }
    /// The body has ended.
    void finish() { m_lines.finish(); }
    /// The next piece of the answer's text, never empty; none until more bytes come, and none after the end
    /// mark. Throws URLError when a line is too long.
    std::optional<QString> next();
    /// Whether the end mark was read.
    bool isDone() const { return m_isDone; }

private:
    LineSplitter m_lines;
    bool m_isDone = false;
};

} // namespace tovi
