// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include <QFuture>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QUuid>
#include <qcorotask.h>

#include "Platform/Clock.h"
#include "Platform/DispatchQueue.h"
#include "ProviderConfig.h"
#include "Translation/TranslationModels.h"

namespace tovi {

class TranslationProvider;
class URLSession;

/// The entry point of translation: picks the engine, answers from the cache, falls back.
class Translator
{
public:
    /// Called on the main thread with the whole translation received so far.
    using DeltaHandler = std::function<void(const QString &)>;
    /// Makes an engine named `name` whose requests take at most about `timeout`.
    using ProviderFactory = std::function<std::unique_ptr<TranslationProvider>(
        const ProviderConfig &config, const QString &name, Clock::Duration timeout)>;

    static constexpr int cacheLimit = 300;

    static Translator &shared();
    Translator();
    ~Translator();

    /// Called and resumed on the main thread; the engine works on the background executor. Throws
    /// TranslationError only.
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source,
                                             std::optional<QUuid> providerID, DeltaHandler onDelta);
    /// One uncached translation with exactly this configuration, which may be unsaved.
    QCoro::Task<TranslationResult> testConnection(ProviderConfig config);

    /// Where engines come from. Called on the background executor; set before the first translation.
    ProviderFactory providerFactory;

private:
    struct Request;

    QFuture<TranslationResult> start(const Request &request);
    QCoro::Task<TranslationResult> perform(Request request);
    std::optional<TranslationResult> cachedResult(const QString &key) const;
    void store(const TranslationResult &result, const QString &key);

    const std::unique_ptr<URLSession> m_dictionarySession;
    mutable std::mutex m_cacheLock;
    QHash<QString, TranslationResult> m_cache;
    QStringList m_cacheOrder;
    // Last, so that its thread ends before anything it uses.
    DispatchQueue m_executor{QStringLiteral("com.brevoll.tovi.translation")};
};

} // namespace tovi
