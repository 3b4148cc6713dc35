// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QFuture>
#include <QList>
#include <QString>
#include <QStringList>
#include <qcorotask.h>

#include "Platform/Clock.h"
#include "Platform/Observable.h"
#include "Platform/TranslationFramework.h"
#include "Translation/TranslationProvider.h"

namespace tovi {

/// The on-device engine: translates with the system's translation framework.
class AppleTranslationProvider final : public TranslationProvider
{
public:
    explicit AppleTranslationProvider(const QString &name)
        : m_name(name)
    {}

    QString name() const override { return m_name; }
    bool supportsStreaming() const override { return false; }
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source) override;

private:
    const QString m_name;
};

/// Turns the framework's sessions, which come by callback, into awaitable ones, and keeps the last. Main
/// thread only.
class AppleTranslationBridge : public Observable
{
public:
    static constexpr Clock::Duration sessionLimit = std::chrono::seconds(25);

    struct Configuration
    {
        std::optional<QString> source; ///< none: detected for each text
        QString target;
        bool operator==(const Configuration &) const = default;
    };

    static AppleTranslationBridge &shared();
    AppleTranslationBridge();
    /// Ends the waiting requests without a session.
    ~AppleTranslationBridge();

    /// The pair that a session was last asked for; assigning asks for one.
    Published<std::optional<Configuration>> configuration;

    /// A session for the pair, the held one where it fits; null when none came in time or none can come.
    QCoro::Task<std::shared_ptr<TranslationSession>> session(QString source, QString target);
    /// Forgets a session that failed, so that the next request gets a new one.
    void discard(const std::shared_ptr<TranslationSession> &session);

private:
    class Waiter;
    using Waiters = QList<std::shared_ptr<Waiter>>;

    void openSession();
    void provide(const QString &key, const std::shared_ptr<TranslationSession> &session);
    void timeout(const std::shared_ptr<Waiter> &waiter);
    Waiters takeWaiters(const QString &key);

    std::shared_ptr<TranslationSession> m_session;
    QString m_sessionKey;
    QString m_pendingKey;
    Waiters m_waiters;                                // oldest first
    std::shared_ptr<AppleTranslationBridge *> m_self; // for callbacks that may come after the end
};

} // namespace tovi
