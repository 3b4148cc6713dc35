// SPDX-License-Identifier: MIT
#include "Platform/Linux/UnixSignals.h"

#include <cerrno>
#include <csignal>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <sys/socket.h>
#include <unistd.h>

namespace tovi {

static int s_signalSockets[2] = {-1, -1};

extern "C" void toviSignalHandler(int)
{
    const int interrupted = errno;
    const char one = 1;
    [[maybe_unused]] const auto written = ::write(s_signalSockets[0], &one, 1);
    errno = interrupted;
}

void quitOnUnixSignals()
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, s_signalSockets) != 0)
        return;
    auto *notifier =
        new QSocketNotifier(s_signalSockets[1], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, QCoreApplication::instance(), [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::exit(); // quit() would ask the windows first
    });
    struct sigaction action = {};
    action.sa_handler = toviSignalHandler;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(number, &action, nullptr);
}

} // namespace tovi
