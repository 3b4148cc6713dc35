// SPDX-License-Identifier: MIT
#include "TraceReader.h"

#include <chrono>

#include <fcntl.h>
#include <unistd.h>

#include "DesktopSession.h"

namespace tovi {

TraceReader::TraceReader()
{
    int ends[2];
    if (::pipe(ends) != 0)
        qFatal("no pipe");
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
    ::fcntl(m_readEnd, F_SETFL, O_NONBLOCK);
    ::fcntl(m_writeEnd, F_SETFL, O_NONBLOCK); // marks that nobody reads must not hold up the program
    ::fcntl(m_readEnd, F_SETFD, FD_CLOEXEC);
}

TraceReader::~TraceReader()
{
    programStarted();
    ::close(m_readEnd);
}

QString TraceReader::environment() const
{
    return QStringLiteral("TOVI_TRACE_FD=%1").arg(m_writeEnd);
}

void TraceReader::programStarted()
{
    if (m_writeEnd >= 0)
        ::close(m_writeEnd);
    m_writeEnd = -1;
}

void TraceReader::read()
{
    char bytes[4096];
    for (ssize_t count = 0; (count = ::read(m_readEnd, bytes, sizeof bytes)) > 0;)
        m_buffer.append(bytes, count);
    for (qsizetype end = 0; (end = m_buffer.indexOf('\n')) >= 0;) {
        const QList<QByteArray> words = m_buffer.left(end).split(' ');
        m_buffer.remove(0, end + 1);
        if (words.size() < 2)
            continue;
        Mark mark{words[0], words[1].toLongLong(), {}};
        for (qsizetype i = 2; i < words.size(); ++i) {
            const qsizetype equals = words[i].indexOf('=');
            mark.numbers.insert(words[i].left(equals), words[i].mid(equals + 1).toLongLong());
        }
        m_marks.append(mark);
    }
}

std::optional<TraceReader::Mark> TraceReader::next(const QByteArray &name)
{
    std::optional<Mark> found;
    DesktopSession::eventually(
        [&] {
            read();
            while (!m_marks.isEmpty() && !found) {
                if (m_marks.first().name == name)
                    found = m_marks.first();
                m_marks.removeFirst();
            }
            return found.has_value();
        },
        std::chrono::seconds(30));
    return found;
}

void TraceReader::clear()
{
    read();
    m_marks.clear();
}

qint64 TraceReader::now()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace tovi
