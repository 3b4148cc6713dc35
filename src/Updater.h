// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QObject>
#include <qcorotask.h>

#include "Appcast.h"
#include "Platform/Clock.h"
#include "Platform/Observable.h"
#include "Platform/URLSession.h"

namespace tovi {

/// Looks for newer versions in the build's feed. Installs nothing. Main thread.
class UpdateController final : public QObject, public Observable
{
    Q_OBJECT

public:
    enum class Failure {
        switchedOff, ///< this build leaves updates to somebody else
        noFeed,
        insecure, ///< the feed's address is not https
        unreachable,
        unreadable,
    };
    struct State
    {
        enum class Phase { idle, checking, upToDate, available, failed };
        Phase phase = Phase::idle;
        std::optional<AppcastItem> item; ///< the available one
        Failure failure = Failure::switchedOff;
        int httpStatus = 0; ///< of an answer that was a failure; else 0
    };

    UpdateController();

    Published<State> state;
    /// The user wants to see the state: he has asked for it, or a newer version was found meanwhile.
    Subject<> wantsAttention;

    /// A check that the user asks for. The first one starts daily checks, which speak up only when they find
    /// something new.
    void checkForUpdates();

private:
    void start();
    void schedule();
    QCoro::Task<> check();
    QCoro::Task<State> look();
    QCoro::Task<QByteArray> load(QUrl url, qsizetype limit);

    std::unique_ptr<URLSession> m_session;
    Subscription m_schedule;
    bool m_isChecking = false;
    bool m_isForUser = false;
    QString m_announcedVersion;
};

namespace Updater {
/// Made with the first check, so nothing is scheduled before.
UpdateController &controller();
} // namespace Updater

} // namespace tovi
