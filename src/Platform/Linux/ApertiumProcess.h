// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>

namespace tovi {

/// The running programs of one Apertium mode, joined by pipes: messages in, replies out, in the same order.
/// Lives on one thread with an event loop. Ends its programs when destroyed; they also end when this program
/// does, however it ends.
class ApertiumProcess
{
public:
    struct Handlers
    {
        std::function<void(const QByteArray &reply)> reply;
        /// The programs ended, did not start, or broke the format; called once.
        std::function<void()> ended;
    };

    /// `command` is a shell's. Handlers are never called from inside the constructor or send(); `ended` may
    /// destroy the process, `reply` may not.
    ApertiumProcess(const QString &command, Handlers handlers);
    ~ApertiumProcess();
    ApertiumProcess(const ApertiumProcess &) = delete;

    /// Never blocks. The message holds no NUL.
    void send(const QByteArray &message);

    /// The command for a mode file, or an empty text when it cannot be read.
    static QString commandOfMode(const QString &path);

private:
    void readReplies();
    void end();
    void killAll();

    Handlers m_handlers;
    QByteArray m_incomplete;
    // Outlives this object when it is destroyed in the middle of one of its own signals.
    QProcess *m_process;
    qint64 m_group = 0;
    bool m_hasEnded = false;
    QObject m_context; // ends the connections, also of signals that are under way
};

} // namespace tovi
