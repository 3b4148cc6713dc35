// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>

#include <QTemporaryFile>

#include "Platform/Linux/CurlURLLoading.h"
#include "ScriptedServer.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Code = URLError::Code;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

constexpr qsizetype limit = 128 * 1024 * 1024;

/// An environment variable for the length of a test.
class Variable
{
public:
    Variable(const char *name, const QByteArray &value)
        : m_name(name)
    {
        qputenv(name, value);
    }
    ~Variable() { qunsetenv(m_name); }

private:
    const char *m_name;
};

class URLLoadingTest : public testing::Test
{
protected:
    struct Answer
    {
        int status = 0;
        QByteArray body;
    };
    static QCoro::Task<Answer> fetch(URLSession &session, URLRequest request)
    {
        const auto task = session.start(request);
        const auto answering = task->response();
        const URLResponse response = co_await answering;
        auto reading = task->readAll(limit);
        const QByteArray body = co_await reading;
        co_return Answer{response.statusCode, body};
    }
    QCoro::Task<Answer> fetch(const QString &url) { return fetch(*session, {.url = QUrl(url)}); }
    /// How a request fails; unknown where it does not.
    Code failure(const URLRequest &request)
    {
        const auto error = errorOf<URLError>(fetch(*session, request));
        EXPECT_TRUE(error) << qPrintable(request.url.toString());
        return error ? error->code() : Code::unknown;
    }
    Code failure(const QString &url) { return failure({.url = QUrl(url)}); }

    TestPlatform platform;
    CurlURLLoading loading{platform.clock(), platform.systemLog()};
    std::unique_ptr<URLSession> session = loading.makeSession({5s, 15s});
};

TEST_F(URLLoadingTest, ACutStreamOnAReusedConnectionIsAlwaysAnError)
{
    std::atomic<bool> cuts = false;
    ScriptedServer server([&](const Request &, Reply &reply) {
        reply.beginStream();
        reply.chunk("data: one\n\n");
        if (!cuts) {
            reply.endStream();
            return;
        }
        reply.chunk("data: two\n\n");
        reply.reset();
    });
    for (int i = 0; i < 200; ++i) {
        cuts = false;
        EXPECT_EQ(await(fetch(server.origin())).body, "data: one\n\n");
        cuts = true;
        EXPECT_EQ(failure(server.origin()), Code::networkConnectionLost);
    }
    // The cut requests came over the connections of the good ones.
    EXPECT_EQ(server.connectionCount(), 200);
    EXPECT_EQ(server.requests().size(), 400);
}

TEST_F(URLLoadingTest, BodiesArriveUnpackedAndToTheEnd)
{
    // "compressed text", by gzip.
    const QByteArray packed =
        QByteArray::fromHex("1f8b08000000000002034bcecf2d284a2d2e4e4d512849ad280100c218d8d80f000000");
    ScriptedServer server([&](const Request &request, Reply &reply) {
        if (request.target == "/gzip") {
            reply.answer(200, packed, {"Content-Encoding: gzip"});
            return;
        }
        reply.send("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nto the end");
        reply.close();
    });
    EXPECT_EQ(await(fetch(server.origin() + QStringLiteral("/gzip"))).body, "compressed text");
    EXPECT_EQ(await(fetch(server.origin() + QStringLiteral("/end"))).body, "to the end");
}

TEST_F(URLLoadingTest, FailuresHaveTheirCodes)
{
    struct Row
    {
        const char *path;
        Code code;
        std::function<void(Reply &)> answer;
    };
    const QByteArray shortened("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nshort");
    const QByteArray unchunked("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nshort\r\n");
    const Row rows[] = {
        {"/short", Code::networkConnectionLost,
         [&](Reply &reply) {
             reply.send(shortened);
             reply.close();
         }},
        {"/chunk", Code::networkConnectionLost,
         [&](Reply &reply) {
             reply.send(unchunked);
             reply.close();
         }},
        {"/nothing", Code::networkConnectionLost, [](Reply &reply) { reply.close(); }},
        {"/reset", Code::networkConnectionLost, [](Reply &reply) { reply.reset(); }},
        {"/foreign", Code::badServerResponse,
         [](Reply &reply) {
             reply.send("220 mail.example ESMTP\r\n");
             reply.close();
         }},
        {"/headers", Code::badServerResponse,
         [](Reply &reply) {
             reply.answer(200, {}, QList<QByteArray>(10'000, "X-Header: " + QByteArray(90, 'a')));
         }},
        {"/round", Code::httpTooManyRedirects,
         [](Reply &reply) { reply.answer(302, {}, {"Location: /round"}); }},
        {"/elsewhere", Code::badServerResponse,
         [](Reply &reply) { reply.answer(302, {}, {"Location: file:///etc/passwd"}); }},
        {"/gzip", Code::cannotDecodeContentData,
         [](Reply &reply) { reply.answer(200, "not compressed", {"Content-Encoding: gzip"}); }},
    };
    ScriptedServer server([&](const Request &request, Reply &reply) {
        for (const Row &row : rows) {
            if (request.target == row.path)
                row.answer(reply);
        }
    });
    for (const Row &row : rows)
        EXPECT_EQ(failure(server.origin() + QLatin1String(row.path)), row.code) << row.path;

    QString closed;
    {
        closed = ScriptedServer([](const Request &, Reply &) {}).origin();
    }
    EXPECT_EQ(failure(closed), Code::cannotConnectToHost);
    const Code unknownHost = failure(QStringLiteral("http://no-such-host.invalid/"));
    EXPECT_TRUE(unknownHost == Code::cannotFindHost || unknownHost == Code::notConnectedToInternet);
    EXPECT_EQ(failure({.url = QUrl(server.origin()), .headers = {{"Authorization", "Bearer a\r\nX: b"}}}),
              Code::requestNotSendable);
    EXPECT_EQ(failure({.url = QUrl(server.origin() + u'/' + QString(9'000'000, u'a'))}), Code::badURL);
}

TEST_F(URLLoadingTest, ARedirectToAnotherHostCarriesNoKey)
{
    ScriptedServer other([](const Request &, Reply &reply) { reply.answer(200, "other"); });
    ScriptedServer server([&](const Request &request, Reply &reply) {
        if (request.target == "/away")
            reply.answer(307, {}, {"Location: " + other.origin().toUtf8() + "/"});
        else if (request.target == "/host")
            reply.answer(307, {}, {"Location: http://localhost:" + QByteArray::number(other.port())});
        else if (request.target == "/moved")
            reply.answer(308, {}, {"Location: /here"});
        else
            reply.answer(200, "here");
    });
    const auto post = [&](const char *path) {
        return await(fetch(*session, {.url = QUrl(server.origin() + QLatin1String(path)),
                                      .method = URLRequest::Method::post,
                                      .headers = {{"Authorization", "Bearer key"}},
                                      .body = "text"}));
    };
    EXPECT_EQ(post("/moved").body, "here");
    EXPECT_EQ(server.requests().last().header("Authorization"), "Bearer key");
    EXPECT_EQ(server.requests().last().body, "text");
    for (const char *path : {"/away", "/host"}) {
        EXPECT_EQ(post(path).body, "other");
        EXPECT_TRUE(other.requests().last().header("Authorization").isNull()) << path;
    }
}

TEST_F(URLLoadingTest, SilenceAndSlownessEndByTheClock)
{
    std::counting_semaphore<> goOn{0};
    ScriptedServer server([&](const Request &request, Reply &reply) {
        if (request.target == "/trickle") {
            reply.beginStream();
            do
                goOn.acquire();
            while (reply.chunk("a"));
        }
        reply.stall();
    });
    const auto isSilent = [&](const QString &path) {
        const auto task = session->start({.url = QUrl(server.origin() + path)});
        const auto response = task->response();
        EXPECT_TRUE(waitUntil([&] { return !server.requests().isEmpty(); }));
        platform.clock().advance(4900ms);
        EXPECT_FALSE(response.isFinished());
        platform.clock().advance(200ms);
        try {
            await(response);
            return false;
        } catch (const URLError &error) {
            return error.code() == Code::timedOut;
        }
    };
    EXPECT_TRUE(isSilent(QStringLiteral("/silent")));

    // One byte now and then is no silence, but the whole has its limit too.
    const auto task = session->start({.url = QUrl(server.origin() + QStringLiteral("/trickle"))});
    int pieces = 0;
    try {
        for (; pieces < 10; ++pieces) {
            goOn.release();
            EXPECT_EQ(await(task->read()), "a");
            const auto next = task->read();
            platform.clock().advance(4s);
            if (pieces >= 3)
                await(next);
            else
                EXPECT_FALSE(next.isFinished());
            goOn.release();
            await(next);
        }
        ADD_FAILURE() << "no time-out";
    } catch (const URLError &error) {
        EXPECT_EQ(error.code(), Code::timedOut);
    }
    EXPECT_EQ(pieces, 3);

    goOn.release(100); // the server finds out that nobody listens
}

TEST_F(URLLoadingTest, WhatLiesUnreadCostsTheServerNoTime)
{
    std::counting_semaphore<> isRead{0};
    std::counting_semaphore<> isSent{0};
    ScriptedServer server([&](const Request &request, Reply &reply) {
        if (request.target == "/other") {
            reply.answer(200, "other");
            return;
        }
        reply.beginStream();
        reply.chunk("one");
        isRead.acquire();
        reply.chunk("two");
        isSent.release();
        reply.stall();
    });
    const auto task = session->start({.url = QUrl(server.origin())});
    EXPECT_EQ(await(task->read()), "one");
    isRead.release();
    isSent.acquire();
    // Another request goes through the same thread, which has seen the piece then.
    await(fetch(server.origin() + QStringLiteral("/other")));
    platform.clock().advance(100s);
    EXPECT_EQ(await(task->read()), "two");
    const auto next = task->read();
    platform.clock().advance(4900ms);
    EXPECT_FALSE(next.isFinished());
    platform.clock().advance(200ms);
    EXPECT_THROW(await(next), URLError);
}

TEST_F(URLLoadingTest, WhatNobodyReadsStaysWithTheServer)
{
    constexpr qsizetype whole = 64 * 1024 * 1024;
    std::atomic<qsizetype> sent = 0;
    std::atomic<bool> isOver = false;
    ScriptedServer server([&](const Request &, Reply &reply) {
        reply.beginStream();
        const QByteArray piece(64 * 1024, 'a');
        while (sent < whole && reply.chunk(piece))
            sent += piece.size();
        reply.endStream();
        isOver = true;
    });
    auto task = session->start({.url = QUrl(server.origin())});
    EXPECT_EQ(await(task->response()).statusCode, 200);
    // The server comes to a halt, and however long that takes is our own silence, not its.
    EXPECT_TRUE(waitUntil([&] { return sent > 1024 * 1024; }));
    platform.clock().advance(6s);
    qsizetype held = 0;
    qsizetype received = 0;
    for (QByteArray piece = await(task->read()); !piece.isEmpty(); piece = await(task->read())) {
        held = std::max(held, piece.size());
        received += piece.size();
    }
    EXPECT_EQ(received, whole);
    EXPECT_LT(held, 512 * 1024);

    // Who loses interest does not have to take the rest.
    sent = 0;
    isOver = false;
    task = session->start({.url = QUrl(server.origin())});
    await(task->read());
    task.reset();
    EXPECT_TRUE(waitUntil([&] { return isOver.load(); }));
    EXPECT_LT(sent, whole);
}

TEST_F(URLLoadingTest, ConnectionsServeAgain)
{
    std::counting_semaphore<> isLeft{0};
    std::counting_semaphore<> isSent{0};
    ScriptedServer server([&](const Request &, Reply &reply) {
        reply.beginStream();
        reply.chunk("data: [DONE]\n\n");
        isLeft.acquire();
        reply.chunk("\n");
        reply.endStream();
        isSent.release();
    });
    // Each session leaves after the last useful byte, as a reader of a stream does.
    for (int i = 0; i < 3; ++i) {
        const auto own = loading.makeSession({5s, 15s});
        auto task = own->start({.url = QUrl(server.origin())});
        EXPECT_EQ(await(task->read()), "data: [DONE]\n\n");
        task.reset();
        isLeft.release();
        isSent.acquire();
    }
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(URLLoadingTest, OnlyTrustedCertificatesAreTrusted)
{
    const auto certificate = ScriptedServer::Tls::make();
    ASSERT_FALSE(certificate.certificate.isEmpty());
    QTemporaryFile authorities;
    ASSERT_TRUE(authorities.open());
    authorities.write(certificate.certificate);
    ASSERT_TRUE(authorities.flush());
    ScriptedServer plain([](const Request &, Reply &reply) { reply.answer(200, "open"); });
    const auto answer = [&](const Request &request, Reply &reply) {
        if (request.target == "/open")
            reply.answer(302, {}, {"Location: " + plain.origin().toUtf8()});
        else
            reply.answer(200, "secret");
    };
    ScriptedServer server(answer, certificate);
    EXPECT_EQ(failure(server.origin()), Code::serverCertificateUntrusted);
    const Variable authority("SSL_CERT_FILE", authorities.fileName().toUtf8());
    const int before = server.connectionCount();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(await(fetch(server.origin())).body, "secret");
    EXPECT_EQ(server.connectionCount(), before + 1);
    EXPECT_EQ(failure(server.origin().replace(QLatin1String("127.0.0.1"), QLatin1String("localhost"))),
              Code::serverCertificateUntrusted);
    // Nor does a redirect lead out of the protected road.
    EXPECT_EQ(failure(server.origin() + QStringLiteral("/open")), Code::badServerResponse);
    EXPECT_TRUE(plain.requests().isEmpty());
}

TEST_F(URLLoadingTest, TheEnvironmentsProxyIsUsed)
{
    std::atomic<bool> refuses = false;
    ScriptedServer proxy(
        [&](const Request &, Reply &reply) { reply.answer(refuses ? 407 : 200, "by proxy"); });
    const Variable variable("http_proxy", proxy.origin().toUtf8());
    EXPECT_EQ(await(fetch(QStringLiteral("http://service.example/path"))).body, "by proxy");
    EXPECT_EQ(proxy.requests().first().target, "http://service.example/path");
    // A server on this machine is not the proxy's business.
    ScriptedServer own([](const Request &, Reply &reply) { reply.answer(200, "direct"); });
    EXPECT_EQ(await(fetch(own.origin())).body, "direct");
    const Variable secure("https_proxy", proxy.origin().toUtf8());
    refuses = true;
    EXPECT_EQ(failure(QStringLiteral("https://service.example/")), Code::cannotConnectToHost);
}

TEST_F(URLLoadingTest, TheEndCancelsWhatIsUnderWay)
{
    ScriptedServer server([](const Request &, Reply &reply) { reply.stall(); });
    std::optional<CurlURLLoading> own(std::in_place, platform.clock(), platform.systemLog());
    const auto ownSession = own->makeSession({5s, 15s});
    const auto task = ownSession->start({.url = QUrl(server.origin())});
    const auto response = task->response();
    own.reset();
    try {
        await(response);
        FAIL();
    } catch (const URLError &error) {
        EXPECT_EQ(error.code(), Code::cancelled);
    }
}

} // namespace
} // namespace tovi
