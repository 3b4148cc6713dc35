// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Settings.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "Translation/TranslationProvider.h"
#include "Translation/Translator.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

const QString en = QStringLiteral("en");
const QString es = QStringLiteral("es");
const QString automatic = QStringLiteral("auto");

/// What the engines of a test do and were asked.
struct Script
{
    bool streams = false;
    std::function<TranslationResult(const ProviderConfig &, const QString &text)> answer =
        [](const ProviderConfig &config, const QString &text) {
            return TranslationResult{text.toUpper(), std::nullopt, std::nullopt, config.displayName(), {}};
        };

    std::mutex mutex;
    QStringList calls; // "kind text target source"
    QStringList names;
    QList<Clock::Duration> timeouts;
    bool wasOnMainThread = false;
};

class ScriptedEngine final : public TranslationProvider
{
public:
    ScriptedEngine(std::shared_ptr<Script> script, ProviderConfig config)
        : m_script(std::move(script))
        , m_config(std::move(config))
    {}
    QString name() const override { return m_config.displayName(); }
    bool supportsStreaming() const override { return m_script->streams; }
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source) override
    {
        note(QStringLiteral("translate"), text, target, source);
        co_return m_script->answer(m_config, text);
    }
    QCoro::Task<TranslationResult> translateStream(QString text, QString target, QString source,
                                                   DeltaHandler onDelta) override
    {
        note(QStringLiteral("stream"), text, target, source);
        const TranslationResult result = m_script->answer(m_config, text);
        for (qsizetype length = 1; length <= result.translatedText.size(); ++length)
            co_await onDelta(result.translatedText.left(length));
        co_return result;
    }

private:
    void note(const QString &call, const QString &text, const QString &target, const QString &source)
    {
        const std::scoped_lock lock(m_script->mutex);
        m_script->calls << QStringList{call, text, target, source}.join(QLatin1Char(' '));
        m_script->wasOnMainThread |= QThread::currentThread() == qApp->thread();
    }
    std::shared_ptr<Script> m_script;
    ProviderConfig m_config;
};

class TranslatorTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ProviderConfig openAI;
        openAI.id = QUuid::createUuid();
        openAI.kind = ProviderKind::openAI;
        openAI.model = QStringLiteral("model");
        openAI.fallbackToGoogle = true;
        ProviderConfig offline = ProviderConfig::makeApple();
        offline.fallbackToGoogle = false;
        settings.providers = {ProviderConfig::makeGoogle(), openAI, offline};
        settings.currentProviderID = settings.providers->first().id;
        settings.targetLanguage = es;
        translator.providerFactory = [script = script](const ProviderConfig &config, const QString &name,
                                                       Clock::Duration timeout) {
            const std::scoped_lock lock(script->mutex);
            script->names << name;
            script->timeouts << timeout;
            return std::make_unique<ScriptedEngine>(script, config);
        };
    }

    QCoro::Task<TranslationResult> request(const QString &text, int provider, bool wantsDeltas = false)
    {
        deltas.clear();
        Translator::DeltaHandler onDelta;
        if (wantsDeltas) {
            onDelta = [this](const QString &delta) {
                EXPECT_EQ(QThread::currentThread(), qApp->thread());
                deltas << delta;
            };
        }
        return translator.translate(text, es, automatic, settings.providers->at(provider).id, onDelta);
    }
    TranslationResult translate(const QString &text, int provider, bool wantsDeltas = false)
    {
        return await(request(text, provider, wantsDeltas));
    }
    std::optional<TranslationError> failure(const QString &text, int provider)
    {
        return errorOf<TranslationError>(request(text, provider));
    }

    QStringList deltas;
    TestPlatform platform;
    Settings &settings = Settings::shared();
    Translator &translator = Translator::shared();
    std::shared_ptr<Script> script = std::make_shared<Script>();
};

TEST_F(TranslatorTest, ChoosesTheEngine)
{
    EXPECT_EQ(translate(QStringLiteral("one"), 2).providerName, settings.providers->at(2).displayName());
    // An unknown engine is the current one.
    EXPECT_EQ(
        await(translator.translate(QStringLiteral("two"), en, es, QUuid::createUuid(), {})).providerName,
        QStringLiteral("Google"));
    EXPECT_EQ(script->calls,
              (QStringList{QStringLiteral("translate one es auto"), QStringLiteral("translate two en es")}));
    EXPECT_FALSE(script->wasOnMainThread);
}

TEST_F(TranslatorTest, EnginesGetAUsableTimeout)
{
    const auto day = std::chrono::hours(24);
    struct Row
    {
        double stored;
        Clock::Duration used;
    };
    for (const auto &[stored, used] : {Row{20, 20s}, Row{3, 5s}, Row{-1, 5s}, Row{std::nan(""), 5s},
                                       Row{1e300, day}, Row{HUGE_VAL, day}, Row{7.5, 7500ms}}) {
        settings.requestTimeout = stored;
        translate(QString::number(stored), 0);
        EXPECT_EQ(script->timeouts.last(), used) << stored;
    }
}

TEST_F(TranslatorTest, AnswersRepeatedRequestsFromTheCache)
{
    const auto first = translate(QStringLiteral("one"), 0, true);
    EXPECT_TRUE(deltas.isEmpty());
    EXPECT_EQ(translate(QStringLiteral("one"), 0, true), first);
    EXPECT_EQ(deltas, QStringList(QStringLiteral("ONE")));
    EXPECT_EQ(script->calls.size(), 1);
    // Another engine, another text (also by white space only) are other requests.
    translate(QStringLiteral("one"), 2);
    translate(QStringLiteral("one "), 0);
    EXPECT_EQ(script->calls.size(), 3);

    // The oldest entry goes first, however often it was used.
    for (int i = 3; i < Translator::cacheLimit; ++i)
        translate(QString::number(i), 0);
    translate(QStringLiteral("one"), 0);
    EXPECT_EQ(script->calls.size(), Translator::cacheLimit);
    translate(QStringLiteral("last"), 0);
    translate(QStringLiteral("3"), 0);
    EXPECT_EQ(script->calls.size(), Translator::cacheLimit + 1);
    translate(QStringLiteral("one"), 0);
    EXPECT_EQ(script->calls.size(), Translator::cacheLimit + 2);
}

TEST_F(TranslatorTest, StreamsInOrderOnTheMainThread)
{
    script->streams = true;
    translate(QStringLiteral("abcd"), 1, true);
    EXPECT_EQ(deltas, (QStringList{QStringLiteral("A"), QStringLiteral("AB"), QStringLiteral("ABC"),
                                   QStringLiteral("ABCD")}));
    translate(QStringLiteral("efgh"), 1);
    EXPECT_EQ(script->calls,
              (QStringList{QStringLiteral("stream abcd es auto"), QStringLiteral("translate efgh es auto")}));
}

TEST_F(TranslatorTest, FallsBackToGoogleAndSaysSo)
{
    script->answer = [](const ProviderConfig &config, const QString &text) {
        if (config.kind != ProviderKind::google)
            throw TranslationError::network(QStringLiteral("100%@ broken"));
        return TranslationResult{
            text.toUpper(), QStringLiteral("fr"), std::nullopt, QStringLiteral("Google"), {}};
    };
    script->streams = true;
    const TranslationResult expected{
        QStringLiteral("ONE"), QStringLiteral("fr"), std::nullopt, QStringLiteral("Google"),
        QStringLiteral("OpenAI request failed, fell back to Google: 100%@ broken")};
    EXPECT_EQ(translate(QStringLiteral("one"), 1, true), expected);
    EXPECT_EQ(deltas, QStringList(QStringLiteral("ONE")));
    EXPECT_EQ(script->names, (QStringList{QStringLiteral("model"), QStringLiteral("Google")}));
    EXPECT_EQ(translate(QStringLiteral("one"), 1), expected);
    EXPECT_EQ(script->calls.size(), 2);

    // Without the permission the engine's own error is the answer, and nothing is cached.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(failure(QStringLiteral("two"), 2),
                  TranslationError::network(QStringLiteral("100%@ broken")));
    EXPECT_EQ(script->calls.size(), 4);

    // Both fail: the fallback's error. Google itself has no fallback.
    script->answer = [](const ProviderConfig &config, const QString &) -> TranslationResult {
        throw TranslationError::network(config.displayName());
    };
    EXPECT_EQ(failure(QStringLiteral("three"), 1), TranslationError::network(QStringLiteral("Google")));
    auto configs = settings.providers.get();
    configs[0].fallbackToGoogle = true;
    settings.providers = configs;
    const auto asked = script->calls.size();
    EXPECT_TRUE(failure(QStringLiteral("four"), 0));
    EXPECT_EQ(script->calls.size(), asked + 1);
}

} // namespace
} // namespace tovi
