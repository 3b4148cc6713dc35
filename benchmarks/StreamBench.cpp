// SPDX-License-Identifier: MIT
#include <ctime>

#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include "Bench.h"
#include "Platform/DispatchQueue.h"
#include "Platform/Linux/CurlURLLoading.h"
#include "Platform/Linux/LinuxClock.h"
#include "ScriptedServer.h"
#include "Support/Await.h"
#include "Support/TestPlatform.h"
#include "TraceReader.h"
#include "Translation/OpenAICompatibleProvider.h"

namespace tovi::bench {

namespace {

using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;
using namespace std::chrono_literals;

constexpr int timedDeltas = 300;

QByteArray event(const QByteArray &text)
{
    return "data: {\"choices\":[{\"index\":0,\"delta\":{\"content\":\"" + text + "\"}}]}\n\n";
}

/// Answers with timed pieces of text, each of which is the time of its writing.
void sendTimes(Reply &reply)
{
    reply.beginStream();
    for (int i = 0; i < timedDeltas; ++i) {
        QThread::usleep(2000);
        reply.chunk(event(QByteArray::number(TraceReader::now()) + ' '));
    }
    reply.chunk("data: [DONE]\n\n");
    reply.endStream();
}

ProviderConfig engineConfig(const ScriptedServer &server, const QString &path)
{
    ProviderConfig config;
    config.kind = ProviderKind::openAI;
    config.baseURL = server.origin() + path + QStringLiteral("/chat/completions");
    config.model = QStringLiteral("model");
    return config;
}

/// Translates on the queue as the translator does, and hands each text to `onDelta` there.
void stream(DispatchQueue &queue, const ProviderConfig &config, const std::function<void(QString)> &onDelta)
{
    const auto make = [config, onDelta]() -> QCoro::Task<bool> {
        OpenAICompatibleProvider engine(config, 60s);
        const TranslationProvider::DeltaHandler handler = [&onDelta](QString text) -> QCoro::Task<> {
            onDelta(std::move(text));
            co_return;
        };
        auto task = engine.translateStream(QStringLiteral("text"), QStringLiteral("es"),
                                           QStringLiteral("auto"), handler);
        co_await task;
        co_return true;
    };
    const auto kept = std::make_shared<decltype(make)>(make);
    await(queue.spawn([kept] { return (*kept)(); }));
}

Samples engineDelays(DispatchQueue &queue, const ScriptedServer &server)
{
    Samples delays;
    stream(queue, engineConfig(server, QStringLiteral("/timed")), [&](const QString &text) {
        const qint64 now = TraceReader::now();
        delays.add(double(now - text.trimmed().section(u' ', -1).toLongLong()) / 1e6);
    });
    return delays;
}

Samples bareDelays(const ScriptedServer &server)
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), server.port());
    socket.write("GET /timed HTTP/1.1\r\nHost: a\r\n\r\n");
    Samples delays;
    QByteArray bytes;
    constexpr QByteArrayView mark("\"content\":\"");
    while (!bytes.contains("[DONE]") && socket.waitForReadyRead()) {
        const qint64 now = TraceReader::now();
        const QByteArray piece = socket.readAll();
        if (const qsizetype at = piece.indexOf(mark); at >= 0)
            delays.add(double(now - piece.mid(at + mark.size(), 20).split(' ').first().toLongLong()) / 1e6);
        bytes = piece;
    }
    return delays;
}

double threadMicroseconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

/// CPU time of the engine's thread for one delta, in microseconds.
double cpuPerDelta(DispatchQueue &queue, const ScriptedServer &server, const QString &path)
{
    double first = 0;
    double last = 0;
    int count = 0;
    QString held; // as a window does until the next text comes
    stream(queue, engineConfig(server, path), [&](QString text) {
        held = std::move(text);
        last = threadMicroseconds();
        if (++count == 1)
            first = last;
    });
    return count > 1 ? (last - first) / (count - 1) : 0;
}

QCoro::Task<QByteArray> fetch(URLSession &session, QUrl url)
{
    const auto task = session.start({.url = url});
    auto reading = task->readAll(1000);
    co_return co_await reading;
}

/// Each round on connections of its own: the first request, then another.
void benchConnections(TestPlatform &platform, Clock &clock)
{
    const ScriptedServer::Tls tls = ScriptedServer::Tls::make();
    QTemporaryDir folder;
    QFile authority(folder.filePath(QStringLiteral("authority.pem")));
    if (!authority.open(QIODevice::WriteOnly) || authority.write(tls.certificate) < 0)
        return;
    authority.close();
    qputenv("SSL_CERT_FILE", authority.fileName().toUtf8());
    ScriptedServer server([](const Request &, Reply &reply) { reply.answer(200, "answer"); }, tls);
    Samples first;
    Samples second;
    for (int round = 0; round < 30; ++round) {
        CurlURLLoading loading(clock, platform.systemLog());
        for (Samples *samples : {&first, &second}) {
            const auto session = loading.makeSession({60s, 60s});
            const qint64 begin = TraceReader::now();
            await(fetch(*session, QUrl(server.origin())));
            samples->add(double(TraceReader::now() - begin) / 1e6);
        }
    }
    qunsetenv("SSL_CERT_FILE");
    printRow(QStringLiteral("first request to a host, with its TLS handshake"), first, "ms");
    printRow(QStringLiteral("second request to the same host"), second, "ms");
    printRatio(QStringLiteral("second request : first"), second.median(), first.median(), 0.5);
}

} // namespace

void benchStreams()
{
    printHeading("Streams (a server on the loopback interface)");
    TestPlatform platform;
    LinuxClock clock;
    platform.useNetwork(std::make_unique<CurlURLLoading>(clock, platform.systemLog()));
    ScriptedServer server([](const Request &request, Reply &reply) {
        if (request.target.startsWith("/timed")) {
            sendTimes(reply);
            return;
        }
        const int count = request.target.contains("long") ? 10'000 : 1'000;
        reply.beginStream();
        for (int i = 0; i < count; ++i)
            reply.chunk(event("ten bytes."));
        reply.endStream();
    });
    DispatchQueue queue(QStringLiteral("bench"));

    const Samples engine = engineDelays(queue, server);
    const Samples bare = bareDelays(server);
    printRow(QStringLiteral("server's write to onDelta"), engine, "ms");
    printRow(QStringLiteral("server's write to a bare socket's reader"), bare, "ms");
    std::printf("  %-58s %9.3f ms  (aim: at most 1)\n", "delay added at the median",
                engine.median() - bare.median());

    Samples shortText;
    Samples longText;
    for (int i = 0; i < 5; ++i) {
        shortText.add(cpuPerDelta(queue, server, QStringLiteral("/short")));
        longText.add(cpuPerDelta(queue, server, QStringLiteral("/long")));
    }
    printRow(QStringLiteral("CPU for a delta, 10 KB in 1,000"), shortText, "us");
    printRow(QStringLiteral("CPU for a delta, 100 KB in 10,000"), longText, "us");
    printRatio(QStringLiteral("long text : short text"), longText.median(), shortText.median(), 1.2);
    benchConnections(platform, clock);
}

} // namespace tovi::bench
