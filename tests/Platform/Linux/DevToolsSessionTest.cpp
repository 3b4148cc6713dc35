// SPDX-License-Identifier: MIT
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

#include "Capture/AppleScriptCapturer.h"
#include "Platform/Linux/DevToolsScriptRunner.h"
#include "Platform/Linux/DevToolsSession.h"
#include "Support/LoopbackPeer.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

/// A browser's DevTools server. Its pages are lines "state|title|text", the state being one of hidden,
/// visible, focused, gone, throws, hangs.
struct FakeBrowser
{
    explicit FakeBrowser(QByteArrayList list)
        : pages(std::move(list))
    {}
    QByteArray field(int page, int number) const { return pages[page].split('|')[number]; }

    /// The answer's content; none for a page that hangs.
    std::optional<QByteArray> answer(const QString &method, const QJsonValue &parameters,
                                     const QString &session)
    {
        const QString target = parameters[QLatin1String("targetId")].toString();
        if (method == QLatin1String("Target.getTargets")) {
            QByteArrayList targets{R"({"type":"worker","targetId":"0","title":"News - Paper"})"};
            for (int i = 0; i < pages.size(); ++i)
                targets << R"({"type":"page","targetId":")" + QByteArray::number(i) + R"(","title":")" +
                               field(i, 1) + R"("})";
            return R"("result":{"targetInfos":[)" + targets.join(',') + "]}";
        }
        if (method == QLatin1String("SystemInfo.getProcessInfo"))
            return R"("result":{"processInfo":[{"type":"GPU","id":3},{"type":"browser","id":2}]})";
        if (method == QLatin1String("Target.attachToTarget")) {
            asked << target.toInt();
            if (field(target.toInt(), 0) == "gone")
                return R"("error":{"code":-32602})";
            ++attached;
            return R"("result":{"sessionId":")" + target.toLatin1() + R"("})";
        }
        if (method == QLatin1String("Target.detachFromTarget")) {
            --attached;
            return R"("result":{})";
        }
        if (method == QLatin1String("Page.createIsolatedWorld"))
            return parameters[QLatin1String("frameId")].toString() == session
                       ? R"("result":{"executionContextId":7})"
                       : R"("error":{"code":-32602})";
        if (parameters[QLatin1String("contextId")].toInt() != 7)
            return R"("error":{"code":-32000})"; // nobody asks the page's own world
        const QByteArray state = field(session.toInt(), 0);
        if (state == "hangs")
            return std::nullopt;
        if (state == "throws")
            return R"("result":{"result":{"type":"object"},"exceptionDetails":{}})";
        return QByteArray(R"("result":{"result":{"value":{"visible":)") +
               (state == "hidden" ? "false" : "true") + R"(,"focused":)" +
               (state == "focused" ? "true" : "false") + R"(,"text":")" + field(session.toInt(), 2) +
               R"("}}})";
    }

    /// Returns how it was asked for.
    QByteArray serve(LoopbackPeer::Connection &connection)
    {
        const QByteArray head = connection.acceptWebSocket();
        QByteArray frame;
        while ((frame = connection.readFrame()).startsWith('\x81')) {
            const QJsonObject message = QJsonDocument::fromJson(frame.mid(1)).object();
            const auto content =
                answer(message[QLatin1String("method")].toString(), message[QLatin1String("params")],
                       message[QLatin1String("sessionId")].toString());
            connection.writeText(R"({"method":"Target.targetInfoChanged","params":{}})");
            if (content)
                connection.writeText("{\"id\":" + QByteArray::number(message[QLatin1String("id")].toInt()) +
                                     ',' + *content + '}');
        }
        wasClosed = frame.startsWith('\x88');
        return head;
    }

    QByteArrayList pages;
    QList<int> asked;
    int attached = 0;
    bool wasClosed = false;
};

TEST(DevToolsSessionTest, AsksThePageThatTheUserSees)
{
    const struct
    {
        const char *name;
        QByteArrayList pages;
        QList<int> asked;
        const char *text;
    } cases[] = {
        {"the title leads",
         {"visible|Other|no", "hidden|News|", "focused|News - Paper|a 🚢\\n"},
         {2},
         "a 🚢\n"},
        {"no focus", {"visible|Other|no", "hidden|News|", "visible|News|yes"}, {1, 2}, "yes"},
        {"no title", {"hidden||", "visible|x|no", "focused|y|yes"}, {0, 1, 2}, "yes"},
        {"an installed application", {"visible|x|no", "focused|Chromium|yes"}, {1}, "yes"},
        {"some cannot tell", {"gone|x|", "throws|y|", "visible|z|yes"}, {0, 1, 2}, "yes"},
        {"nothing visible", {"hidden|News|no"}, {0}, nullptr},
    };
    for (const auto &one : cases) {
        SCOPED_TRACE(one.name);
        FakeBrowser browser(one.pages);
        {
            LoopbackPeer peer([&](LoopbackPeer::Connection &connection) { browser.serve(connection); });
            DevToolsSession session(QDeadlineTimer(60s));
            ASSERT_TRUE(session.open({peer.port(), "/devtools/browser/1"}));
            const auto text = session.selectedText(QStringLiteral("News - Paper - Chromium"));
            EXPECT_EQ(text, one.text ? std::optional(QString::fromUtf8(one.text)) : std::nullopt);
        }
        EXPECT_EQ(browser.asked, one.asked);
        EXPECT_EQ(browser.attached, 0);
        EXPECT_TRUE(browser.wasClosed);
    }
}

TEST(DevToolsSessionTest, APageThatHangsEndsWithTheDeadlineAndTakesNoAnswerAway)
{
    FakeBrowser browser({"visible|x|yes", "hangs|y|", "focused|z|no"});
    LoopbackPeer peer([&](LoopbackPeer::Connection &connection) { browser.serve(connection); });
    std::optional<QString> text;
    for (auto limit = 50ms; !text && limit < 20s; limit *= 2) { // on a slow machine too
        DevToolsSession session{QDeadlineTimer(limit)};
        if (session.open({peer.port(), "/devtools/browser/1"}))
            text = session.selectedText({});
    }
    EXPECT_EQ(text, QStringLiteral("yes"));
}

TEST(DevToolsSessionTest, ABrowserThatWasToldItsPortIsAskedForItsPathAndWhoItIs)
{
    for (const qint64 process : {2, 3}) { // the browser is 2
        FakeBrowser browser({});
        QByteArrayList heads;
        {
            LoopbackPeer peer([&](LoopbackPeer::Connection &connection) {
                if (!heads.isEmpty())
                    return heads.append(browser.serve(connection));
                heads << connection.readHead();
                connection.write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n"
                                 R"({"webSocketDebuggerUrl": "ws://127.0.0.1:1/devtools/browser/7-a"})");
            });
            DevToolsSession session(QDeadlineTimer(60s));
            EXPECT_EQ(session.open({peer.port(), {}, {4711, process}}), process == 2);
        }
        EXPECT_TRUE(heads[0].startsWith("GET /json/version HTTP/1.1\r\n"));
        EXPECT_TRUE(heads.value(1).startsWith("GET /devtools/browser/7-a "));
    }
}

struct NoWindow final : ActiveWindowSource
{
    std::optional<ActiveWindow> activeWindow() override { return {}; }
};

TEST(DevToolsScriptRunnerTest, OtherScriptsConnectToNobody)
{
    LoopbackPeer peer([](LoopbackPeer::Connection &) {});
    QProcess browser; // which only has the command line of one
    browser.start(QStringLiteral("cat"),
                  {QStringLiteral("--"), QStringLiteral("-"),
                   QStringLiteral("--remote-debugging-port=") + QString::number(peer.port())});
    ASSERT_TRUE(browser.waitForStarted());
    TestPlatform platform;
    DevToolsScriptRunner runner(platform.workspace(), std::make_shared<NoWindow>(), 60s);
    const auto bringToFront = [&](const char *identifier) {
        platform.workspace().frontmost =
            RunningApplication{{}, QString::fromLatin1(identifier), browser.processId()};
    };
    bringToFront("org.chromium.Chromium");
    AppleScriptCapturer::selectedText();
    const QString script = platform.scriptRunner().sources.value(0);
    for (const QString &other :
         {QString(), script + QLatin1Char('\n'),
          QString(script).replace(QStringLiteral("window.getSelection().toString()"), QStringLiteral("1"))})
        EXPECT_FALSE(runner.run(other)) << other.toStdString();
    bringToFront("com.google.Chrome");
    EXPECT_FALSE(runner.run(script));
    EXPECT_EQ(peer.connections(), 0);

    bringToFront("org.chromium.Chromium");
    EXPECT_FALSE(runner.run(script));
    EXPECT_EQ(peer.connections(), 1) << "the one script asks, to no avail";
    browser.kill();
    browser.waitForFinished();
}

} // namespace
} // namespace tovi
