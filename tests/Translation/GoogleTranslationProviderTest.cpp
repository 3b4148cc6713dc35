// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Support/Await.h"
#include "Support/WebFixture.h"
#include "Translation/GoogleTranslationProvider.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

class GoogleTranslationProviderTest : public testing::Test, protected WebFixture
{
protected:
    QCoro::Task<TranslationResult> translate(const QString &text, const QString &source)
    {
        return engine.translate(text, QStringLiteral("zh-CN"), source);
    }
    GoogleTranslationProvider engine{QStringLiteral("Web"), 5s};
};

TEST_F(GoogleTranslationProviderTest, SendsTheTextAsItIs)
{
    answer = [](const Request &, Reply &reply) {
        reply.answer(200, R"([[["eins ","one"],["zwei","two"],[null,null,"translit"],[],7],null,"en"])");
    };
    const TranslationResult expected{
        QStringLiteral("eins zwei"), QStringLiteral("en"), {}, QStringLiteral("Web"), {}};
    const std::tuple<QString, QString, QByteArray> rows[] = {
        {QStringLiteral("C++ & #1"), QString(), "sl=auto&tl=zh-CN&dt=t&q=C%2B%2B%20%26%20%231"},
        {QStringLiteral(" 100%41\n"), QStringLiteral("auto"), "sl=auto&tl=zh-CN&dt=t&q=%20100%2541%0A"},
        {QStringLiteral("\u00e9\U0001F600"), QStringLiteral("fr"),
         "sl=fr&tl=zh-CN&dt=t&q=%C3%A9%F0%9F%98%80"},
    };
    for (const auto &[text, source, query] : rows) {
        EXPECT_EQ(await(translate(text, source)), expected);
        EXPECT_EQ(server.requests().last().target, "/translate_a/single?client=gtx&" + query);
        EXPECT_EQ(server.requests().last().method, "GET");
    }
    EXPECT_TRUE(server.requests().last().header("User-Agent").startsWith("Mozilla/5.0 "));
    EXPECT_EQ(GoogleTranslationProvider::parse(R"([[["a"]],null,7])").source, std::nullopt);
}

TEST_F(GoogleTranslationProviderTest, FailuresAreToldApart)
{
    const auto network = [](const char *message) {
        return TranslationError::network(QLatin1String(message));
    };
    const std::tuple<int, QByteArray, TranslationError> rows[] = {
        {429, "", network("Google Translate returned error 429")},
        {200, "<html></html>", network("The server's answer is not valid JSON")},
        {200, "", network("The server's answer is not valid JSON")},
        {200, QByteArray(3 * 1024 * 1024, ' '), network("The server's answer is too long")},
        {200, QByteArray(5000, '['), network("The server's answer is nested too deeply")},
        {200, "{}", TranslationError::parse()},
        {200, "[null]", TranslationError::parse()},
        {200, "[[]]", TranslationError::empty()},
        {200, R"([[[null,"a"],["",""],{"0":"a"}],null,"en"])", TranslationError::empty()},
    };
    int current = 0;
    answer = [&](const Request &, Reply &reply) {
        reply.answer(std::get<0>(rows[current]), std::get<1>(rows[current]));
    };
    for (; current < int(std::size(rows)); ++current)
        EXPECT_EQ(errorOf<TranslationError>(translate(QStringLiteral("one"), {})), std::get<2>(rows[current]))
            << current;
    // A text that no address can hold.
    EXPECT_EQ(errorOf<TranslationError>(translate(QString(9'000'000, u'a'), {})),
              network("The address of the request is not valid or too long"));
    qputenv("TOVI_GOOGLE_ORIGIN", "no origin");
    EXPECT_EQ(errorOf<TranslationError>(translate(QStringLiteral("one"), {})), TranslationError::parse());
}

} // namespace
} // namespace tovi
