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
constexpr auto generous = 60s;

TEST(WebSocketTest, PutsMessagesTogetherHoweverTheyCome)
{
    const QByteArray large(70'000, 'x');
    const QByteArray stream = frame(0x81, QByteArray(300, 'y')) + frame(0x81, large) + frame(0x01, "t") +
                              frame(0x89, "ping") + frame(0x00, "w") + frame(0x8a, "") + frame(0x80, "o") +
                              frame(0x81, "");
    QByteArray head, pong, sent;
    {
        LoopbackPeer peer([&](Connection &connection) {
            head = connection.acceptWebSocket(stream.left(4)); // the first frame begins with the answer
            connection.write(stream.mid(4));
            pong = connection.readFrame();
            sent = connection.readFrame();
        });
        WebSocketClient client{QDeadlineTimer(generous)};
        ASSERT_TRUE(client.open(peer.port(), "/path"));
        for (const QByteArray &message : {QByteArray(300, 'y'), large, QByteArray("two"), QByteArray("")})
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
    const QByteArray good = "HTTP/1.1 101 Switching\r\nUpgrade: websocket\r\nSec-WebSocket-Accept: ";
    for (const QByteArray &answer :
         {good + "AAAAAAAAAAAAAAAAAAAAAAAAAAA=\r\n\r\n", good + "@\r\n", QByteArray(1 << 20, 'x')}) {
        LoopbackPeer peer([&](Connection &connection) {
            const QByteArray acceptance = LoopbackPeer::acceptance(connection.readHead());
            connection.write(QByteArray(answer).replace("@", acceptance));
        });
        WebSocketClient client{QDeadlineTimer(generous)};
        EXPECT_FALSE(client.open(peer.port(), "/")) << answer.right(40).constData();
        EXPECT_FALSE(client.send("text"));
    }
    const quint16 freePort = LoopbackPeer([](Connection &) {}).port();
    EXPECT_FALSE(WebSocketClient(QDeadlineTimer(generous)).open(freePort, "/"));
}

TEST(WebSocketTest, WhatIsNoMessageIsTheEnd)
{
    const QByteArray nearlyFull(WebSocketReader::sizeLimit - 1, 'x');
    const QByteArray streams[] = {
        frame(0x82, "binary"),
        frame(0xc1, "reserved bit"),
        frame(0x80, "continues nothing"),
        frame(0x01, "one") + frame(0x81, "in another"),
        frame(0x89, QByteArray(126, 'x')),
        QByteArray("\x81\x83mask\1\2\3", 9),
        QByteArray("\x81\x7f\xff\xff\xff\xff\xff\xff\xff\xff", 10),
        frame(0x01, nearlyFull) + frame(0x00, "y") + frame(0x80, "z"),
    };
    for (const QByteArray &stream : streams) {
        WebSocketReader reader;
        reader.append(stream + frame(0x81, "later"));
        const auto event = reader.next();
        ASSERT_TRUE(event) << stream.left(20).toHex().constData();
        EXPECT_EQ(event->kind, WebSocketReader::Event::Kind::Failed);
    }
}

TEST(WebSocketTest, TheDeadlineEndsEverySilence)
{
    LoopbackPeer silent([](Connection &connection) {
        connection.acceptWebSocket(frame(0x01, "and then"));
        connection.readFrame(); // never comes
    });
    // Until the opening has succeeded, on a slow machine too.
    bool opened = false;
    for (auto limit = 20ms; !opened && limit < generous; limit *= 2) {
        WebSocketClient client{QDeadlineTimer(limit)};
        opened = client.open(silent.port(), "/");
        EXPECT_FALSE(client.receive());
    }
    EXPECT_TRUE(opened);
}

} // namespace
} // namespace tovi
