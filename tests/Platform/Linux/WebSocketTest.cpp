// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/Linux/WebSocketClient.h"
#include "Support/LoopbackPeer.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Connection = LoopbackPeer::Connection;

const auto frame = LoopbackPeer::frame;

/// Long enough for any machine, where something is to come.
QDeadlineTimer generous()
{
    return QDeadlineTimer(60s);
}

TEST(WebSocketTest, PutsMessagesTogetherHoweverTheyCome)
{
    const QByteArray large(70'000, 'x');
    const QByteArray stream = frame(0x81, "one") + frame(0x81, QByteArray(300, 'y')) + frame(0x81, large) +
                              frame(0x01, "t") + frame(0x89, "ping") + frame(0x00, "w") + frame(0x8a, "") +
                              frame(0x80, "o") + frame(0x81, "");
    QByteArray head, pong, sent;
    {
        LoopbackPeer peer([&](Connection &connection) {
            head = connection.acceptWebSocket(stream.left(4)); // the first frame begins with the answer
            connection.write(stream.mid(4));
            pong = connection.readFrame();
            sent = connection.readFrame();
        });
        WebSocketClient client(generous());
        ASSERT_TRUE(client.open(peer.port(), "/path"));
        const QByteArray expected[] = {"one", QByteArray(300, 'y'), large, "two", ""};
        for (const QByteArray &message : expected)
            EXPECT_EQ(client.receive(), message);
        EXPECT_TRUE(client.send(QByteArray(500, 'z')));
    }
    EXPECT_TRUE(head.startsWith("GET /path HTTP/1.1\r\nHost: 127.0.0.1:"));
    EXPECT_FALSE(head.toLower().contains("origin"));
    EXPECT_EQ(pong, "\x8aping");
    EXPECT_EQ(sent, '\x81' + QByteArray(500, 'z'));
}

TEST(WebSocketTest, OpensOnlyWithAServerThatUnderstands)
{
    const auto answer = [](const QByteArray &accept, const QByteArray &status = "101 Switching",
                           const QByteArray &more = "") {
        return "HTTP/1.1 " + status + "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n" + more +
               "Sec-WebSocket-Accept: " + accept + "\r\n\r\n";
    };
    const std::function<QByteArray(const QByteArray &)> answers[] = {
        [&](const QByteArray &) { return answer("AAAAAAAAAAAAAAAAAAAAAAAAAAA="); },
        [&](const QByteArray &accept) { return answer(accept, "403 Forbidden"); },
        [&](const QByteArray &accept) {
            return answer(accept, "101 Switching", "Sec-WebSocket-Extensions: permessage-deflate\r\n");
        },
        [&](const QByteArray &) { return QByteArray("HTTP/1.1 101 Switching\r\n\r\n"); },
        [&](const QByteArray &accept) { return answer(accept).chopped(2); },
        [&](const QByteArray &) { return QByteArray(1 << 20, 'x'); },
        [&](const QByteArray &) { return QByteArray(); },
    };
    int number = 0;
    for (const auto &make : answers) {
        LoopbackPeer peer([&](Connection &connection) {
            connection.write(make(LoopbackPeer::acceptance(connection.readHead())));
        });
        WebSocketClient client(generous());
        EXPECT_FALSE(client.open(peer.port(), "/")) << "answer " << number++;
        EXPECT_FALSE(client.send("text"));
        EXPECT_FALSE(client.receive());
    }
}

TEST(WebSocketTest, EndsWithWhatIsNoMessage)
{
    const QByteArray streams[] = {
        frame(0x82, "binary"),
        frame(0xc1, "reserved bit"),
        frame(0x83, "unknown"),
        frame(0x80, "continues nothing"),
        frame(0x01, "one") + frame(0x81, "in another"),
        frame(0x09, "a ping in pieces"),
        frame(0x89, QByteArray(126, 'x')),
        QByteArray("\x81\x83mask\1\2\3", 9),
        QByteArray("\x81\x7f\0\0\0\0\x01\0\0\x01", 10), // one byte too long
        QByteArray("\x81\x7f\xff\xff\xff\xff\xff\xff\xff\xff", 10),
        frame(0x88, QByteArray("\x03\xe8", 2)),
        frame(0x81, "cut in the middle").chopped(3),
    };
    for (const QByteArray &stream : streams) {
        LoopbackPeer peer([&](Connection &connection) { connection.acceptWebSocket(stream); });
        WebSocketClient client(generous());
        ASSERT_TRUE(client.open(peer.port(), "/"));
        EXPECT_FALSE(client.receive()) << stream.toHex().constData();
        EXPECT_FALSE(client.isOpen());
    }
}

TEST(WebSocketTest, FragmentsTogetherHaveTheLimitToo)
{
    WebSocketReader reader;
    reader.append(frame(0x01, QByteArray(WebSocketReader::sizeLimit - 1, 'x')) + frame(0x00, "y"));
    EXPECT_FALSE(reader.next());
    reader.append(frame(0x80, "z"));
    const auto end = reader.next();
    ASSERT_TRUE(end);
    EXPECT_EQ(end->kind, WebSocketReader::Event::Kind::Failed);
}

TEST(WebSocketTest, TheDeadlineEndsEverySilence)
{
    LoopbackPeer unanswered([](Connection &connection) {
        connection.readHead();
        connection.readFrame(); // never comes
    });
    EXPECT_FALSE(WebSocketClient(QDeadlineTimer(20ms)).open(unanswered.port(), "/"));

    LoopbackPeer silent([](Connection &connection) {
        connection.acceptWebSocket(frame(0x01, "and then"));
        connection.readFrame();
    });
    // Until the opening has succeeded, on a slow machine too.
    bool opened = false;
    for (auto limit = 20ms; !opened && limit < 60s; limit *= 2) {
        WebSocketClient client{QDeadlineTimer(limit)};
        opened = client.open(silent.port(), "/");
        EXPECT_FALSE(client.receive());
    }
    EXPECT_TRUE(opened);

    quint16 freePort;
    {
        freePort = LoopbackPeer([](Connection &) {}).port();
    }
    EXPECT_FALSE(WebSocketClient(QDeadlineTimer(QDeadlineTimer::Forever)).open(freePort, "/"));
}

} // namespace
} // namespace tovi
