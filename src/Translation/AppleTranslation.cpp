// SPDX-License-Identifier: MIT
#include "Translation/AppleTranslation.h"

#include "Localization.h"
#include "Platform/Clock.h"
#include "Platform/DispatchQueue.h"
#include "Platform/Platform.h"

namespace tovi {

namespace {

const QString automatic = QStringLiteral("auto");

TranslationError missing(Str message)
{
    return TranslationError::missingConfiguration(Localization::shared().t(message));
}

bool isUnsupported(TranslationFramework &framework, const QString &text, const QString &target,
                   const QString &source)
{
    using Availability = TranslationFramework::Availability;
    if (!source.isEmpty() && source != automatic)
        return framework.status(source, target) == Availability::Unsupported;
    try {
        return framework.statusForText(text, target) == Availability::Unsupported;
    } catch (const TranslationFrameworkError &) {
        return false; // the session may still know better
    }
}

TranslationError translationError(const TranslationFrameworkError &error)
{
    using Reason = TranslationFrameworkError::Reason;
    switch (error.reason()) {
    case Reason::NotInstalled:
        return missing(Str::errorOfflineNotInstalled);
    case Reason::Unsupported:
        return missing(Str::errorOfflineUnsupported);
    case Reason::Failed:
        break;
    }
    return TranslationError::network(error.description());
}

} // namespace

QCoro::Task<TranslationResult> AppleTranslationProvider::translate(QString text, QString target,
                                                                   QString source)
{
    TranslationFramework &framework = Platform::current().translationFramework();
    if (!framework.isPresent() || isUnsupported(framework, text, target, source))
        throw missing(Str::errorOfflineUnsupported);
    const auto opening = spawnOnMain(
        [source, target] { return AppleTranslationBridge::shared().session(source, target); });
    const std::shared_ptr<TranslationSession> session = co_await opening;
    if (!session)
        throw missing(Str::errorOfflineNotInstalled);
    QString translated;
    try {
        translated = co_await session->translate(text);
    } catch (const TranslationFrameworkError &error) {
        if (error.reason() == TranslationFrameworkError::Reason::Failed)
            asyncOnMain([session] { AppleTranslationBridge::shared().discard(session); });
        throw translationError(error);
    }
    translated = translated.trimmed();
    if (translated.isEmpty())
        throw TranslationError::empty();
    co_return TranslationResult{translated, std::nullopt, std::nullopt, m_name, std::nullopt};
}

/// A request that waits for a session of its pair; resumed once, whatever comes first.
class AppleTranslationBridge::Waiter
{
public:
    explicit Waiter(const QString &pairKey)
        : key(pairKey)
    {
        m_continuation.start();
    }

    QFuture<std::shared_ptr<TranslationSession>> future() { return m_continuation.future(); }
    void resume(const std::shared_ptr<TranslationSession> &session)
    {
        if (std::exchange(m_resumed, true))
            return;
        timeout.reset();
        m_continuation.addResult(session);
        m_continuation.finish();
    }

    const QString key;
    Subscription timeout;

private:
    QPromise<std::shared_ptr<TranslationSession>> m_continuation;
    bool m_resumed = false;
};

AppleTranslationBridge &AppleTranslationBridge::shared()
{
    return Platform::current().shared<AppleTranslationBridge>();
}

AppleTranslationBridge::AppleTranslationBridge()
    : configuration(this, std::nullopt, [this](const auto &) { openSession(); })
    , m_self(std::make_shared<AppleTranslationBridge *>(this))
{}

AppleTranslationBridge::~AppleTranslationBridge()
{
    for (const auto &waiter : m_waiters)
        waiter->resume(nullptr);
}

QCoro::Task<std::shared_ptr<TranslationSession>> AppleTranslationBridge::session(QString source,
                                                                                 QString target)
{
    const QString key = source + QLatin1Char('|') + target;
    if (m_session && m_sessionKey == key)
        co_return m_session;
    m_pendingKey = key;
    const bool isAskedFor = std::any_of(m_waiters.begin(), m_waiters.end(),
                                        [&](const auto &waiter) { return waiter->key == key; });
    const auto waiter = std::make_shared<Waiter>(key);
    m_waiters << waiter;
    waiter->timeout = Platform::current().clock().after(
        sessionLimit, [self = std::weak_ptr(m_self), weak = std::weak_ptr(waiter)] {
            const auto bridge = self.lock();
            const auto late = weak.lock();
            if (bridge && late)
                (*bridge)->timeout(late);
        });
    const auto future = waiter->future();
    if (!isAskedFor)
        configuration = Configuration{source == automatic ? std::nullopt : std::optional(source), target};
    co_return co_await future;
}

void AppleTranslationBridge::discard(const std::shared_ptr<TranslationSession> &session)
{
    if (m_session == session)
        m_session.reset();
}

void AppleTranslationBridge::openSession()
{
    if (!configuration.get())
        return;
    Platform::current().translationFramework().openSession(
        configuration->value().source, configuration->value().target,
        [self = std::weak_ptr(m_self), key = m_pendingKey](std::shared_ptr<TranslationSession> session) {
            if (const auto bridge = self.lock())
                (*bridge)->provide(key, session);
        });
}

void AppleTranslationBridge::provide(const QString &key, const std::shared_ptr<TranslationSession> &session)
{
    if (session) {
        m_session = session;
        m_sessionKey = key;
    }
    for (const auto &waiter : takeWaiters(key))
        waiter->resume(session);
}

void AppleTranslationBridge::timeout(const std::shared_ptr<Waiter> &waiter)
{
    if (m_waiters.removeOne(waiter))
        waiter->resume(nullptr);
}

AppleTranslationBridge::Waiters AppleTranslationBridge::takeWaiters(const QString &key)
{
    Waiters taken;
    for (const auto &waiter : m_waiters) {
        if (waiter->key == key)
            taken << waiter;
    }
    m_waiters.removeIf([&](const auto &waiter) { return waiter->key == key; });
    return taken;
}

} // namespace tovi
