// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>

#include <QThread>

#include "Settings.h"
#include "Support/Await.h"
#include "Support/WebFixture.h"
#include "Translation/Translator.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

const QByteArray dictionaryAnswer =
    R"([{"phonetic":"/w/","meanings":[{"partOfSpeech":"noun","definitions":[{"definition":"d"}]}]}])";

/// The translator with its real engines over a real network.
class TranslatorWebTest : public testing::Test, protected WebFixture
{
protected:
    void SetUp() override
    {
        ProviderConfig openAI;
        openAI.id = QUuid::createUuid();
        openAI.kind = ProviderKind::openAI;
        openAI.model = QStringLiteral("model");
        openAI.baseURL = server.origin();
        openAI.fallbackToGoogle = true;
        settings.providers = {ProviderConfig::makeGoogle(), openAI};
        settings.currentProviderID = openAI.id;
        answer = [this](const Request &request, Reply &reply) {
            if (request.target.startsWith("/api/v2/"))
                onDictionary(request, reply);
            else if (request.target.startsWith("/translate_a/"))
                onGoogle(reply);
            else
                onChat(reply);
        };
    }
    QCoro::Task<TranslationResult> translate(const QString &text)
    {
        return Translator::shared().translate(text, QStringLiteral("es"), QStringLiteral("auto"),
                                              std::nullopt, [this](const QString &delta) {
                                                  EXPECT_EQ(QThread::currentThread(), qApp->thread());
                                                  deltas << delta;
                                              });
    }

    std::function<void(Reply &)> onChat = [](Reply &reply) {
        reply.beginStream();
        for (const QByteArray piece : {"ho", "la"})
            reply.chunk("data: {\"choices\":[{\"delta\":{\"content\":\"" + piece + "\"}}]}\n\n");
        reply.chunk("data: [DONE]\n\n");
        reply.endStream();
    };
    std::function<void(Reply &)> onGoogle = [](Reply &reply) {
        reply.answer(200, R"([[["web"]],null,"en"])");
    };
    std::function<void(const Request &, Reply &)> onDictionary = [](const Request &, Reply &reply) {
        reply.answer(200, dictionaryAnswer);
    };
    Settings &settings = Settings::shared();
    QStringList deltas;
};

TEST_F(TranslatorWebTest, StreamsAndLooksTheWordUp)
{
    const TranslationResult result = await(translate(QStringLiteral(" ice cream ")));
    EXPECT_EQ(deltas, (QStringList{QStringLiteral("ho"), QStringLiteral("hola")}));
    EXPECT_EQ(result.translatedText, QStringLiteral("hola"));
    const DictionaryEntry entry{
        QStringLiteral("ice cream"), QStringLiteral("/w/"), {QStringLiteral("[noun] d")}};
    EXPECT_EQ(result.dictionary, entry);
    QByteArrayList targets;
    for (const Request &request : server.requests())
        targets << request.target;
    EXPECT_TRUE(targets.contains("/api/v2/entries/en/ice%20cream"));

    // From the cache, with its entry and without a request.
    const auto requests = server.requests().size();
    EXPECT_EQ(await(translate(QStringLiteral(" ice cream "))), result);
    EXPECT_EQ(server.requests().size(), requests);

    settings.enableDictionary = false;
    EXPECT_EQ(await(translate(QStringLiteral("word"))).dictionary, std::nullopt);
    EXPECT_EQ(server.requests().size(), requests + 1);
}

TEST_F(TranslatorWebTest, ADictionaryThatFailsIsSilent)
{
    const std::pair<const char *, std::function<void(Reply &)>> rows[] = {
        {"notfound", [](Reply &reply) { reply.answer(404, dictionaryAnswer); }},
        {"accepted", [](Reply &reply) { reply.answer(202, dictionaryAnswer); }},
        {"page", [](Reply &reply) { reply.answer(200, "<html></html>"); }},
        {"reset", [](Reply &reply) { reply.reset(); }},
        {"huge", [](Reply &reply) { reply.answer(200, QByteArray(5 * 1024 * 1024, ' ')); }},
    };
    onDictionary = [&](const Request &request, Reply &reply) {
        for (const auto &[word, act] : rows) {
            if (request.target.endsWith(word))
                act(reply);
        }
    };
    for (const auto &row : rows) {
        const TranslationResult result = await(translate(QLatin1String(row.first)));
        EXPECT_EQ(result.translatedText, QStringLiteral("hola"));
        EXPECT_EQ(result.dictionary, std::nullopt) << row.first;
    }
}

TEST_F(TranslatorWebTest, AFailureDoesNotWaitForTheDictionary)
{
    std::atomic<bool> isCancelled = false;
    onDictionary = [&](const Request &, Reply &reply) {
        reply.stall();
        isCancelled = true;
    };
    onChat = [](Reply &reply) { reply.answer(500, ""); };
    onGoogle = [](Reply &reply) { reply.answer(503, ""); };
    EXPECT_EQ(errorOf<TranslationError>(translate(QStringLiteral("word"))),
              TranslationError::network(QStringLiteral("Google Translate returned error 503")));
    EXPECT_TRUE(waitUntil([&] { return isCancelled.load(); }));

    // A translation does, as long as its limit says.
    onChat = [](Reply &reply) {
        reply.answer(200, "data: {\"choices\":[{\"delta\":{\"content\":\"hola\"}}]}");
    };
    const auto before = server.requests().size();
    auto task = translate(QStringLiteral("word"));
    ASSERT_TRUE(waitUntil([&] { return server.requests().size() == before + 2 && !deltas.isEmpty(); }));
    platform.clock().advance(11s);
    EXPECT_EQ(await(std::move(task)).dictionary, std::nullopt);
}

TEST_F(TranslatorWebTest, TheMainThreadIsWaitedForAndTheServerWaits)
{
    // Nothing is lost or reordered when the window is slower than the service.
    constexpr int count = 2000;
    onChat = [](Reply &reply) {
        reply.beginStream();
        for (int i = 0; i < count; ++i)
            reply.chunk("data: {\"choices\":[{\"delta\":{\"content\":\"" + QByteArray::number(i % 10) +
                        "\"}}]}\n\n");
        reply.endStream();
    };
    const TranslationResult result = await(translate(QStringLiteral("a longer text to translate")));
    ASSERT_EQ(deltas.size(), count);
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(deltas.at(i).size(), i + 1);
    EXPECT_EQ(result.translatedText, deltas.last());
}

} // namespace
} // namespace tovi
