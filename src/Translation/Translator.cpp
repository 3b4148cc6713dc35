// SPDX-License-Identifier: MIT
#include "Translation/Translator.h"

#include "Localization.h"
#include "Platform/Platform.h"
#include "Settings.h"
#include "Translation/DictionaryLookup.h"
#include "Translation/ProviderFactory.h"
#include "Translation/TranslationProvider.h"

namespace tovi {

namespace {

/// The user's limit for a request, at least 5 seconds; whatever the settings file says, a usable one.
Clock::Duration requestTimeout(double stored)
{
    constexpr double longest = 24 * 60 * 60;
    const double bounded = stored > 5.0 ? std::min(stored, longest) : 5.0;
    return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double>(bounded));
}

/// Hands a partial text to the main thread and waits until it was taken.
QCoro::Task<> deliver(Translator::DeltaHandler onDelta, QString text)
{
    const std::function<void()> call = std::bind_front(onDelta, text);
    const QFuture<void> taken = runOnMain(call);
    co_await taken;
}

} // namespace

/// Everything that the work off the main thread needs, taken from the settings on it.
struct Translator::Request
{
    ProviderConfig config;
    Clock::Duration timeout{};
    QString text;
    QString target;
    QString source;
    bool wantsDictionary = false;
    bool mayFallBack = false;
    DeltaHandler onDelta;
};

Translator &Translator::shared()
{
    return Platform::current().shared<Translator>();
}

Translator::Translator()
    : providerFactory(makeProvider)
    , m_dictionarySession(
          Platform::current().urlLoading().makeSession({std::chrono::seconds(10), std::chrono::seconds(15)}))
{}

Translator::~Translator() = default;

QCoro::Task<TranslationResult> Translator::translate(QString text, QString target, QString source,
                                                     std::optional<QUuid> providerID, DeltaHandler onDelta)
{
    Settings &settings = Settings::shared();
    const auto chosen = providerID ? settings.provider(*providerID) : std::nullopt;
    ProviderConfig config = chosen ? *chosen : settings.currentProvider();
    const QString key =
        QStringList{canonicalText(config.id), config.model, source, target, text}.join(QLatin1Char('|'));
    if (const auto cached = cachedResult(key)) {
        if (onDelta)
            onDelta(cached->translatedText);
        co_return *cached;
    }
    Request request{config,
                    requestTimeout(settings.requestTimeout),
                    text,
                    target,
                    source,
                    settings.enableDictionary,
                    config.kind != ProviderKind::google && config.fallbackToGoogle,
                    std::move(onDelta)};
    if (config.kind == ProviderKind::openAI) {
        co_await settings.keyLoaded(config.id);
        if (const auto loaded = settings.provider(config.id))
            request.config.apiKey = loaded->apiKey;
    }
    const auto performing = start(request);
    const TranslationResult result = co_await performing;
    store(result, key);
    co_return result;
}

QCoro::Task<TranslationResult> Translator::testConnection(ProviderConfig config)
{
    const Settings &settings = Settings::shared();
    const Request request{config,
                          requestTimeout(settings.requestTimeout),
                          QStringLiteral("Hello, world."),
                          settings.targetLanguage,
                          QStringLiteral("auto"),
                          false,
                          false,
                          {}};
    const auto performing = start(request);
    co_return co_await performing;
}

// No coroutine: GCC 12 destroys captures of a lambda inside a co_await expression twice.
QFuture<TranslationResult> Translator::start(const Request &request)
{
    return m_executor.spawn([this, request] { return perform(request); });
}

QCoro::Task<TranslationResult> Translator::perform(Request request)
{
    const ProviderFactory factory = providerFactory;
    // On failure its end cancels it.
    std::optional<DictionaryLookup> dictionary;
    if (request.wantsDictionary)
        dictionary.emplace(*m_dictionarySession, request.text);
    std::optional<TranslationError> failure;
    TranslationResult result;
    try {
        const auto engine = factory(request.config, request.config.displayName(), request.timeout);
        const TranslationProvider::DeltaHandler onDelta = [handler = request.onDelta](QString text) {
            return deliver(handler, text);
        };
        if (request.onDelta && engine->supportsStreaming())
            result = co_await engine->translateStream(request.text, request.target, request.source, onDelta);
        else
            result = co_await engine->translate(request.text, request.target, request.source);
    } catch (const TranslationError &error) {
        failure = error;
    }
    if (failure) {
        if (!request.mayFallBack)
            throw *failure;
        const auto engine = factory(ProviderConfig::makeGoogle(), QStringLiteral("Google"), request.timeout);
        const TranslationResult answer =
            co_await engine->translate(request.text, request.target, request.source);
        if (request.onDelta)
            co_await deliver(request.onDelta, answer.translatedText);
        const QString note =
            formatted(Localization::shared().t(Str::fallbackNote), {failure->localizedDescription()});
        result = {answer.translatedText, answer.detectedSource, std::nullopt, answer.providerName, note};
    }
    result.dictionary = std::nullopt;
    if (dictionary) {
        auto lookingUp = dictionary->entry();
        result.dictionary = co_await lookingUp;
    }
    co_return result;
}

std::optional<TranslationResult> Translator::cachedResult(const QString &key) const
{
    const std::scoped_lock lock(m_cacheLock);
    const auto it = m_cache.constFind(key);
    return it == m_cache.constEnd() ? std::nullopt : std::optional(*it);
}

void Translator::store(const TranslationResult &result, const QString &key)
{
    const std::scoped_lock lock(m_cacheLock);
    if (!m_cache.contains(key))
        m_cacheOrder << key;
    m_cache.insert(key, result);
    while (m_cacheOrder.size() > cacheLimit)
        m_cache.remove(m_cacheOrder.takeFirst());
}

} // namespace tovi
