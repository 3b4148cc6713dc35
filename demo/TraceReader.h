// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace tovi {

/// Reads the time marks that a traced Tovi writes.
class TraceReader
{
public:
    struct Mark
    {
        QByteArray name;
        qint64 nanoseconds = 0; ///< CLOCK_MONOTONIC
        QHash<QByteArray, qint64> numbers;
    };

    TraceReader();
    ~TraceReader();
    TraceReader(const TraceReader &) = delete;

    /// For the environment of the traced program.
    QString environment() const;
    /// Once the traced program runs: its end then ends the stream.
    void programStarted();

    /// The next mark of this name, dropping those before it; waits for it, none when it did not come.
    std::optional<Mark> next(const QByteArray &name);
    /// Forgets what has been written until now.
    void clear();

    static qint64 now();

private:
    void read();

    int m_readEnd = -1;
    int m_writeEnd = -1;
    QByteArray m_buffer;
    QList<Mark> m_marks;
};

} // namespace tovi
