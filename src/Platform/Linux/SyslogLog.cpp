// SPDX-License-Identifier: MIT
#include "Platform/Linux/SyslogLog.h"

#include <cstdio>

#include <syslog.h>
#include <unistd.h>

namespace tovi {

SyslogLog::SyslogLog()
{
    openlog("tovi", LOG_PID, LOG_USER);
}

SyslogLog::~SyslogLog()
{
    closelog();
}

void SyslogLog::write(const QString &line)
{
    const QByteArray text = line.toUtf8();
    syslog(LOG_INFO, "%s", text.constData());
    if (isatty(STDERR_FILENO))
        std::fprintf(stderr, "%s\n", text.constData());
}

} // namespace tovi
