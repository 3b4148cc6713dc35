// SPDX-License-Identifier: MIT
#include "Platform/Linux/ApertiumProcess.h"

#include <csignal>

#include <QFile>
#include <QProcessEnvironment>
#include <sys/prctl.h>
#include <unistd.h>

namespace tovi {

namespace {

constexpr int killWaitMilliseconds = 2000;
// No reply to a message of a few kilobytes is longer; one that is comes from programs gone wrong.
constexpr qsizetype longestReply = 1024 * 1024;

} // namespace

ApertiumProcess::ApertiumProcess(const QString &command, Handlers handlers)
    : m_handlers(std::move(handlers))
    , m_process(new QProcess)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    m_process->setProcessEnvironment(environment);
    // What the programs complain about may quote the user's text.
    m_process->setStandardErrorFile(QProcess::nullDevice());
    m_process->setChildProcessModifier([] {
        ::setpgid(0, 0); // so that all of them can be killed together
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
    // Queued, because a failed start is reported from inside start().
    QObject::connect(
        m_process, &QProcess::errorOccurred, &m_context, [this] { end(); }, Qt::QueuedConnection);
    QObject::connect(m_process, &QProcess::finished, &m_context, [this] { end(); });
    QObject::connect(m_process, &QProcess::readChannelFinished, &m_context, [this] { end(); });
    QObject::connect(m_process, &QProcess::readyReadStandardOutput, &m_context, [this] { readReplies(); });
    m_process->start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
    m_group = m_process->processId();
}

ApertiumProcess::~ApertiumProcess()
{
    m_process->disconnect();
    killAll();
    m_process->waitForFinished(killWaitMilliseconds);
    m_process->deleteLater();
}

void ApertiumProcess::send(const QByteArray &message)
{
    m_process->write(message);
    m_process->write("\0", 1);
}

void ApertiumProcess::readReplies()
{
    m_incomplete += m_process->readAllStandardOutput();
    qsizetype start = 0;
    for (qsizetype nul; (nul = m_incomplete.indexOf('\0', start)) >= 0; start = nul + 1)
        m_handlers.reply(m_incomplete.mid(start, nul - start));
    m_incomplete.remove(0, start);
    if (m_incomplete.size() > longestReply) {
        m_incomplete.clear();
        end();
    }
}

void ApertiumProcess::end()
{
    if (std::exchange(m_hasEnded, true))
        return;
    const auto ended = m_handlers.ended;
    ended();
}

void ApertiumProcess::killAll()
{
    if (m_group > 0)
        ::kill(static_cast<pid_t>(-m_group), SIGKILL);
    m_process->kill();
}

QString ApertiumProcess::commandOfMode(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString mode = QString::fromUtf8(file.read(64 * 1024)).trimmed();
    // Every stage gets the option that flushes its output at each NUL, right after its program's name. "$1"
    // stands for the options of the generator (no marks on unknown words), "$2" for those of the tagger.
    QString command;
    bool isQuoted = false;
    bool isBeforeProgram = true;
    bool isInProgram = false;
    for (const QChar c : mode + QChar(u' ')) {
        if (c == u'\'')
            isQuoted = !isQuoted;
        if (isInProgram && c.isSpace() && !isQuoted) {
            command += QStringLiteral(" -z");
            isInProgram = false;
        } else if (isBeforeProgram && !c.isSpace()) {
            isBeforeProgram = false;
            isInProgram = true;
        } else if (c == u'|' && !isQuoted) {
            isBeforeProgram = true;
        }
        command += c;
    }
    return command.replace(QLatin1String("$1"), QLatin1String("-n")).remove(QLatin1String("$2")).trimmed();
}

} // namespace tovi
