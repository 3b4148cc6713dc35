// SPDX-License-Identifier: MIT
#include "Platform/Linux/ApertiumFramework.h"

#include <atomic>
#include <map>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/ApertiumModes.h"
#include "Platform/Linux/ApertiumPipeline.h"
#include "Platform/Linux/LanguageDetector.h"

namespace tovi {

namespace {

[[noreturn]] void failWithoutRoute(TranslationFramework::Availability availability)
{
    using Reason = TranslationFrameworkError::Reason;
    const bool isSupported = availability == TranslationFramework::Availability::Supported;
    throw TranslationFrameworkError(isSupported ? QStringLiteral("The language pair is not installed")
                                                : QStringLiteral("The language pair is not supported"),
                                    isSupported ? Reason::NotInstalled : Reason::Unsupported);
}

} // namespace

/// The pipelines and the queue they live on; kept by the framework and its sessions.
class ApertiumFramework::Engine
{
public:
    explicit Engine(const QString &modesFolder)
        : modes(modesFolder)
    {}

    Availability status(const QString &source, const QString &target) const
    {
        if (modes.route(source, target))
            return Availability::Installed;
        return modes.couldRoute(source, target) ? Availability::Supported : Availability::Unsupported;
    }

    QFuture<QString> translate(const QString &text, const std::optional<QString> &source,
                               const QString &target)
    {
        return m_queue.spawn([this, text, source, target] { return run(this, text, source, target); });
    }

    /// Blocks until the programs are gone.
    void end()
    {
        m_queue
            .run([this] {
                m_hasEnded = true;
                m_pipelines.clear();
            })
            .waitForFinished();
        // Whoever waited for a pipeline continues before this.
        m_queue.run([] {}).waitForFinished();
    }

    const ApertiumModes modes;

private:
    static QCoro::Task<QString> run(Engine *self, QString text, std::optional<QString> source, QString target)
    {
        if (!source)
            source = LanguageDetector::dominantLanguage(text);
        // Numbers and signs are the same in every language.
        if (!source)
            co_return text;
        const auto route = self->modes.route(*source, target);
        if (!route)
            failWithoutRoute(self->status(*source, target));
        for (const ApertiumMode &mode : *route) {
            if (self->m_hasEnded)
                throw TranslationFrameworkError(QStringLiteral("The translation was ended"));
            text = co_await self->pipeline(mode).translate(text);
        }
        co_return text;
    }

    ApertiumPipeline &pipeline(const ApertiumMode &mode)
    {
        auto &pipeline = m_pipelines[mode.path];
        if (!pipeline)
            pipeline = std::make_unique<ApertiumPipeline>(m_queue, mode.path, mode.source);
        return *pipeline;
    }

    // The queue's thread only.
    std::map<QString, std::unique_ptr<ApertiumPipeline>> m_pipelines;
    bool m_hasEnded = false;
    DispatchQueue m_queue{QStringLiteral("com.brevoll.tovi.apertium")};
};

class ApertiumFramework::Session final : public TranslationSession
{
public:
    Session(std::shared_ptr<Engine> engine, std::optional<QString> source, const QString &target)
        : m_engine(std::move(engine))
        , m_source(std::move(source))
        , m_target(target)
    {}
    QFuture<QString> translate(const QString &text) override
    {
        return m_engine->translate(text, m_source, m_target);
    }

private:
    std::shared_ptr<Engine> m_engine;
    std::optional<QString> m_source;
    QString m_target;
};

ApertiumFramework::ApertiumFramework(const QString &modesFolder)
    : m_engine(std::make_shared<Engine>(modesFolder))
{}

ApertiumFramework::~ApertiumFramework()
{
    m_engine->end();
}

bool ApertiumFramework::isPresent() const
{
    return !m_engine->modes.isEmpty();
}

TranslationFramework::Availability ApertiumFramework::status(const QString &source, const QString &target)
{
    return m_engine->status(source, target);
}

TranslationFramework::Availability ApertiumFramework::statusForText(const QString &text,
                                                                    const QString &target)
{
    const auto language = LanguageDetector::dominantLanguage(text);
    if (!language)
        throw TranslationFrameworkError(QStringLiteral("The text has no words"));
    return m_engine->status(*language, target);
}

void ApertiumFramework::openSession(const std::optional<QString> &source, const QString &target,
                                    SessionHandler handler)
{
    std::shared_ptr<TranslationSession> session;
    const auto known = source && !source->isEmpty() ? source : std::nullopt;
    if (known ? m_engine->modes.route(*known, target).has_value() : isPresent())
        session = std::make_shared<Session>(m_engine, known, target);
    asyncOnMain([session, handler = std::move(handler)] { handler(session); });
}

} // namespace tovi
