// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>

#include <QJsonArray>

#include "Json.h"
#include "Localization.h"
#include "Support/Await.h"
#include "Support/WebFixture.h"
#include "Translation/ChatStream.h"
#include "Translation/OpenAICompatibleProvider.h"
#include "Translation/ProviderErrorMapper.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

const QString de = QStringLiteral("de");
const QString automatic = QStringLiteral("auto");

QByteArray event(const QByteArray &text)
{
    return "data: {\"choices\":[{\"index\":0,\"delta\":{\"content\":\"" + text + "\"}}]}";
}

class OpenAICompatibleProviderTest : public testing::Test, protected WebFixture
{
protected:
    void SetUp() override
    {
        config.kind = ProviderKind::openAI;
        config.name = QStringLiteral("Engine");
        config.baseURL = server.origin();
        config.model = QStringLiteral("model");
        config.systemPrompt = QStringLiteral("To {{target}} from {{source}}. {{target}}!");
    }
    std::unique_ptr<OpenAICompatibleProvider> engine() const
    {
        return std::make_unique<OpenAICompatibleProvider>(config, 5s);
    }
    TranslationResult translate(const QString &source = automatic,
                                const QString &text = QStringLiteral("one"))
    {
        const auto own = engine();
        return await(own->translate(text, de, source));
    }
    TranslationResult stream(QStringList *deltas = nullptr)
    {
        const auto own = engine();
        return await(own->translateStream(QStringLiteral("one"), de, automatic,
                                          [deltas](QString text) -> QCoro::Task<> {
                                              if (deltas)
                                                  *deltas << text;
                                              co_return;
                                          }));
    }
    std::optional<TranslationError> streamFailure()
    {
        const auto own = engine();
        const auto ignore = [](QString) -> QCoro::Task<> { co_return; };
        return errorOf<TranslationError>(own->translateStream(QStringLiteral("one"), de, automatic, ignore));
    }
    /// The errors of both modes, which the caller expects to be one.
    TranslationError failure()
    {
        const auto own = engine();
        const auto streamed = streamFailure();
        const auto whole = errorOf<TranslationError>(own->translate(QStringLiteral("one"), de, automatic));
        EXPECT_TRUE(streamed && whole && *streamed == *whole);
        return whole.value_or(TranslationError::parse());
    }
    QJsonObject sentBody() const { return decodeJson(server.requests().last().body).toObject(); }

    ProviderConfig config;
};

TEST_F(OpenAICompatibleProviderTest, BaseURLsBecomeEndpoints)
{
    const std::pair<const char *, const char *> rows[] = {
        {"https://a.example", "https://a.example/v1/chat/completions"},
        {"https://a.example/v1/", "https://a.example/v1/chat/completions"},
        {"https://a.example/x/v1beta", "https://a.example/x/v1beta/chat/completions"},
        {"https://a.example/openai", "https://a.example/openai/chat/completions"},
        {"http://127.0.0.1:8080/chat/completions/", "http://127.0.0.1:8080/chat/completions"},
        {"https://a.example/V1", "https://a.example/V1/v1/chat/completions"},
        {"https://a.example/api", "https://a.example/api/v1/chat/completions"},
        {"a.example", nullptr},
        {"localhost:8080", nullptr},
        {"ftp://a.example", nullptr},
        {"file:///etc/passwd", nullptr},
        {"https://", nullptr},
        {"https://a b.example", nullptr},
        {"https://a.example/%zz", nullptr},
    };
    for (const auto &[base, expected] : rows) {
        const auto url = OpenAICompatibleProvider::endpoint(QLatin1String(base));
        ASSERT_EQ(url.has_value(), expected != nullptr) << base;
        EXPECT_EQ(url ? url->toEncoded() : QByteArray(), QByteArray(expected)) << base;
    }
}

TEST_F(OpenAICompatibleProviderTest, RequestsSayWhatIsWanted)
{
    answer = [](const Request &, Reply &reply) {
        reply.answer(200, R"({"choices":[{"message":{"content":" eins\n"}}]})");
    };
    config.apiKey = QStringLiteral("  ");
    config.baseURL = u' ' + server.origin() + QStringLiteral("/v1/ \n");
    config.model = QStringLiteral(" model ");
    config.temperature = 0.7;
    const QString text = QStringLiteral(" %1 \"%@\" %d\n\u4e2d\U0001F600 ");
    const TranslationResult result = translate(QStringLiteral("ja"), text);
    EXPECT_EQ(result, (TranslationResult{QStringLiteral("eins"), {}, {}, QStringLiteral("Engine"), {}}));

    const Request request = server.requests().last();
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.target, "/v1/chat/completions");
    EXPECT_EQ(request.header("Content-Type"), "application/json");
    EXPECT_EQ(request.header("Authorization"), "Bearer   ");
    const auto messages = [this] { return arrayOfObjects(sentBody().value(QLatin1String("messages"))); };
    const auto content = [&](int i) { return messages()->at(i).value(QLatin1String("content")).toString(); };
    EXPECT_EQ(sentBody().value(QLatin1String("model")).toString(), config.model);
    EXPECT_EQ(sentBody().value(QLatin1String("temperature")).toDouble(), 0.7);
    EXPECT_EQ(sentBody().value(QLatin1String("stream")), QJsonValue(false));
    EXPECT_EQ(content(0), QStringLiteral("To German from Japanese. German!"));
    EXPECT_EQ(content(1), text);

    translate(QString());
    EXPECT_EQ(content(0), QStringLiteral("To German from auto-detected. German!"));
    config.systemPrompt = QStringLiteral("Translate");
    config.apiKey.clear();
    translate(QStringLiteral("ja"));
    EXPECT_EQ(content(0), QStringLiteral("Translate\n\nThe source language is: Japanese."));
    EXPECT_TRUE(server.requests().last().header("Authorization").isNull());
    translate(automatic);
    EXPECT_EQ(content(0), QStringLiteral("Translate"));
}

TEST_F(OpenAICompatibleProviderTest, WhatIsNotConfiguredSendsNothing)
{
    config.temperature = std::nan("");
    EXPECT_EQ(failure(), TranslationError::network(QStringLiteral("The request cannot be written as JSON")));
    config.model = QStringLiteral(" ");
    EXPECT_EQ(failure(),
              TranslationError::missingConfiguration(QStringLiteral("Please fill in a model name")));
    config.baseURL = QStringLiteral(" %@ %d ");
    EXPECT_EQ(failure(), TranslationError::missingConfiguration(QStringLiteral("Invalid Base URL: %@ %d")));
    EXPECT_TRUE(server.requests().isEmpty());
}

TEST_F(OpenAICompatibleProviderTest, FailuresBecomeShortMessages)
{
    struct Row
    {
        int status;
        QByteArray body;
        QString message;
    };
    const QByteArray family("\U0001F468\u200d\U0001F469\u200d\U0001F467");
    const auto error = [](const QByteArray &message) {
        return "{\"error\":{\n\"message\":\"" + message + "\"},\"message\":\"outer\"}";
    };
    const QString unauthorized = QStringLiteral("API key is invalid or lacks permission");
    const Row rows[] = {
        {401, error("No such key %@"), unauthorized + QStringLiteral(" \u00b7 No such key %@")},
        {403, "", unauthorized},
        {404, R"({"message":"gone"})", QStringLiteral("Endpoint or model not found \u00b7 gone")},
        {404, R"({"error":"text","message":""})", QStringLiteral("Endpoint or model not found")},
        {429, "[1]", QStringLiteral("Rate limited or quota exceeded")},
        {500, R"({"error":{"message":7},"message":"m"})", QStringLiteral("Server error \u00b7 m")},
        {599, QByteArray(64 * 1024, '['), QStringLiteral("Server error")},
        {400, "", QStringLiteral("Request failed (HTTP 400)")},
        {600, error(QByteArray(300, 'a')),
         QStringLiteral("Request failed (HTTP 600) \u00b7 ") + QString(160, u'a')},
        {304, error(family.repeated(200)),
         QStringLiteral("Request failed (HTTP 304) \u00b7 ") + QString::fromUtf8(family).repeated(160)},
    };
    for (const Row &row : rows)
        EXPECT_EQ(ProviderErrorMapper::friendlyHTTPError(row.status, row.body), row.message) << row.status;

    int current = 0;
    answer = [&](const Request &, Reply &reply) { reply.answer(rows[current].status, rows[current].body); };
    for (; current < 9; ++current)
        EXPECT_EQ(failure(), TranslationError::network(rows[current].message)) << current;

    // The second key would be cut in two.
    config.apiKey = QStringLiteral("sk-SECRET");
    for (const int status : {200, 401}) {
        answer = [&](const Request &, Reply &reply) {
            reply.answer(status, error("Bad sk-SECRET: " + QByteArray(140, 'a') + "SK-secret"));
        };
        const auto own = engine();
        const auto told = errorOf<TranslationError>(own->translate(QStringLiteral("one"), de, automatic));
        ASSERT_TRUE(told && told->localizedDescription().contains(QStringLiteral("Bad \u2022")));
        EXPECT_FALSE(told->localizedDescription().contains(QStringLiteral("sk-"), Qt::CaseInsensitive));
    }
    EXPECT_EQ(ProviderErrorMapper::withoutKey(QStringLiteral("none of nonesuch"), QStringLiteral("none")),
              QStringLiteral("\u2022\u2022\u2022\u2022 of nonesuch"));
}

TEST_F(OpenAICompatibleProviderTest, TransportFailuresBecomeShortMessages)
{
    const auto mapped = [](const auto &error) {
        return ProviderErrorMapper::network(std::make_exception_ptr(error));
    };
    EXPECT_EQ(mapped(URLError(URLError::Code::timedOut)),
              TranslationError::network(QStringLiteral("Request timed out")));
    EXPECT_EQ(mapped(URLError(URLError::Code::cannotFindHost)),
              TranslationError::network(QStringLiteral("Cannot reach the server")));
    EXPECT_EQ(mapped(std::runtime_error("secret")),
              TranslationError::network(QStringLiteral("The request failed")));

    // In the middle of a stream, after text was delivered.
    answer = [](const Request &request, Reply &reply) {
        reply.beginStream();
        reply.chunk(event("half") + "\n\n");
        if (request.header("Accept") == "text/event-stream")
            reply.reset();
        else
            reply.close();
    };
    QStringList deltas;
    EXPECT_THROW(stream(&deltas), TranslationError);
    EXPECT_EQ(deltas, QStringList(QStringLiteral("half")));
    EXPECT_EQ(failure(), TranslationError::network(QStringLiteral("No internet connection")));
}

TEST_F(OpenAICompatibleProviderTest, WholeAnswersYieldTheirContent)
{
    const std::pair<const char *, const char *> good[] = {
        {R"({"choices":[{"message":{"content":" a "}},{"message":{"content":"b"}}]})", "a"},
        {R"({"choices":[{"message":{"content":[{"text":"a"},{"type":"image"},{"text":"b"}]}}]})", "ab"},
        {R"({"choices":[{"message":{"content":["a",{"text":"b"}]},"text":"c"}]})", "c"},
        {R"({"choices":[{"message":{"content":null},"text":"c"}],"error":{"message":"e"}})", "c"},
        {"\xEF\xBB\xBF{\"choices\":[{\"text\":\"c\"}]}", "c"},
    };
    for (const auto &[body, content] : good)
        EXPECT_EQ(OpenAICompatibleProvider::parseContent(body), QLatin1String(content)) << body;

    const auto notJson = TranslationError::network(QStringLiteral("The server's answer is not valid JSON"));
    const std::pair<QByteArray, TranslationError> bad[] = {
        {R"({"choices":[{"message":{"content":" \n"}}]})", TranslationError::empty()},
        {R"({"choices":[{"message":{"content":[]}}],"error":{"message":"e"}})", TranslationError::empty()},
        {R"({"choices":[{"message":{}},7],"error":{"message":"100%@"}})",
         TranslationError::network(QStringLiteral("100%@"))},
        {R"({"choices":[{"message":{"content":7}}],"error":{}})", TranslationError::parse()},
        {"[]", TranslationError::parse()},
        {"", notJson},
        {"1,2", notJson},
        {"{\"choices\":[{\"text\":\"\xff\"}]}", notJson},
        {QByteArray(100'000, '['),
         TranslationError::network(QStringLiteral("The server's answer is nested too deeply"))},
    };
    QByteArray body;
    answer = [&](const Request &, Reply &reply) { reply.answer(200, body); };
    for (const auto &[text, error] : bad) {
        body = text;
        const auto own = engine();
        EXPECT_EQ(errorOf<TranslationError>(own->translate(QStringLiteral("one"), de, automatic)), error)
            << text.left(80).constData();
    }
}

/// All pieces of text that a stream yields when it arrives cut at these places.
QStringList texts(const QByteArray &bytes, std::initializer_list<qsizetype> cuts)
{
    ChatStream stream;
    QStringList found;
    const auto drain = [&] {
        while (const auto text = stream.next())
            found << *text;
    };
    qsizetype start = 0;
    for (const qsizetype cut : cuts) {
        stream.append(bytes.mid(start, cut - start));
        drain();
        start = cut;
    }
    stream.append(bytes.mid(start));
    drain();
    stream.finish();
    drain();
    return found;
}

TEST(ChatStreamTest, ReadsWhatServicesSendWhereverItIsCut)
{
    const QByteArray lines = "\xEF\xBB\xBF" + event("A\xC3\xA4\xF0\x9F\x98\x80") +
                             "\n\n: keep-alive\nevent: message\nid: 7\n"
                             "data:\ndata: \t \n" // no payload
                             "data:{\"choices\":[{\"delta\":{\"content\":\"B\"}}]} \t\n"
                             " data: {\"choices\":[{\"delta\":{\"content\":\"not at the margin\"}}]}\n"
                             "data: {\"choices\":[{\"delta\":{\"role\":\"assistant\",\"content\":\"\"}}]}\n"
                             "data: {\"choices\":[{\"delta\":{\"content\":null,\"reasoning\":\"hm\"}}]}\n"
                             "data: {\"choices\":[],\"usage\":{\"total_tokens\":7}}\n"
                             "data: {\"error\":{\"message\":\"overloaded\"}}\n"
                             "data: {broken\ndata: 7\n<html>\n" +
                             event("C\\n") + '\n';
    const QStringList expected{QString::fromUtf8("A\xC3\xA4\xF0\x9F\x98\x80"), QStringLiteral("B"),
                               QStringLiteral("C\n")};
    for (const char *lineEnd : {"\n", "\r\n", "\r"}) {
        const QByteArray bytes = QByteArray(lines).replace("\n", lineEnd);
        for (qsizetype cut = 0; cut <= bytes.size(); ++cut)
            ASSERT_EQ(texts(bytes, {cut}), expected) << cut << " of " << bytes.constData();
        for (qsizetype cut = 0; cut + 1 <= bytes.size(); ++cut)
            ASSERT_EQ(texts(bytes, {cut, cut + 1}), expected) << cut;
        EXPECT_EQ(texts(bytes + "data: [DONE]" + lineEnd + event("late") + lineEnd, {}), expected);
    }
    // A damaged character does not take its neighbours with it; the last line needs no end.
    EXPECT_EQ(texts(event("a\xFF\x62"), {}), QStringList(QStringLiteral("a\uFFFDb")));
    EXPECT_THROW(texts(QByteArray(LineSplitter::longestLine + 1, 'a'), {}), URLError);
}

TEST_F(OpenAICompatibleProviderTest, StreamsGrow)
{
    QList<QByteArray> pieces;
    bool isDone = true;
    answer = [&](const Request &request, Reply &reply) {
        EXPECT_EQ(request.header("Accept"), "text/event-stream");
        reply.beginStream();
        for (const QByteArray &piece : pieces)
            reply.chunk(piece);
        if (isDone)
            reply.chunk("data: [DONE]\n\n");
        reply.endStream();
    };
    const QByteArray umlaut = event(" \xC3\xA4") + "\n\n";
    const qsizetype middle = umlaut.indexOf('\xA4');
    pieces = {"event: x\n" + umlaut.first(middle), umlaut.sliced(middle), event("b ") + "\n\n"};
    for (const bool done : {true, false}) {
        isDone = done;
        QStringList deltas;
        const TranslationResult result = stream(&deltas);
        EXPECT_EQ(result, (TranslationResult{QStringLiteral("äb"), {}, {}, QStringLiteral("Engine"), {}}));
        EXPECT_EQ(deltas, (QStringList{QStringLiteral(" ä"), QStringLiteral(" äb ")}));
        EXPECT_EQ(sentBody().value(QLatin1String("stream")), QJsonValue(true));
    }
    for (const QByteArray &nothing :
         {QByteArray("data: {\"choices\":[{\"delta\":{\"role\":\"assistant\"}}]}\n\n"),
          QByteArray("{\"error\":{\"message\":\"e\"}}"), QByteArray("<html></html>"), event(" ") + "\n\n"}) {
        pieces = {nothing};
        EXPECT_EQ(streamFailure(), TranslationError::empty());
    }
}

TEST_F(OpenAICompatibleProviderTest, HostileAnswersAreBounded)
{
    std::atomic<qsizetype> sent = 0;
    bool hasLines = false;
    answer = [&](const Request &, Reply &reply) {
        const QByteArray piece =
            hasLines ? (event(QByteArray(1000, 'a')) + "\n").repeated(64) : QByteArray(65536, 'a');
        reply.beginStream();
        for (sent = 0; sent < 64 * 1024 * 1024 && reply.chunk(piece);)
            sent += piece.size();
        reply.endStream();
    };
    const TranslationError tooLong =
        TranslationError::network(QStringLiteral("The server's answer is too long"));
    EXPECT_EQ(failure(), tooLong); // one endless line
    hasLines = true;
    EXPECT_EQ(streamFailure(), tooLong);
    EXPECT_LT(sent, 32 * 1024 * 1024);
}

} // namespace
} // namespace tovi
