// SPDX-License-Identifier: MIT
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <unistd.h>

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
    std::optional<QByteArray> answer(const QString &method, const QString &target, const QString &session)
    {
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
                answer(message[QLatin1String("method")].toString(),
                       message[QLatin1String("params")][QLatin1String("targetId")].toString(),
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
        {"twice the title", {"visible|News - Paper|no", "focused|News - Paper|yes"}, {0, 1}, "yes"},
        {"no focus", {"visible|Other|no", "hidden|News|", "visible|News|yes"}, {1, 2}, "yes"},
        {"no title", {"hidden||", "visible|x|no", "focused|y|yes"}, {0, 1, 2}, "yes"},
        {"neither", {"hidden|x|", "visible|y|yes", "visible|z|no"}, {0, 1, 2}, "yes"},
        {"an installed application", {"visible|x|no", "focused|Chromium|yes"}, {1}, "yes"},
        {"some cannot tell", {"gone|x|", "throws|y|", "visible|z|yes"}, {0, 1, 2}, "yes"},
        {"nothing selected", {"focused|News|"}, {0}, ""},
        {"nothing visible", {"hidden|News|no"}, {0}, nullptr},
        {"no page", {}, {}, nullptr},
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

TEST(DevToolsSessionTest, APageThatHangsEndsWithTheDeadline)
{
    FakeBrowser browser({"visible|x|no", "hangs|y|"});
    LoopbackPeer peer([&](LoopbackPeer::Connection &connection) { browser.serve(connection); });
    bool opened = false;
    for (auto limit = 50ms; !opened && limit < 60s; limit *= 2) {
        DevToolsSession session{QDeadlineTimer(limit)};
        opened = session.open({peer.port(), "/devtools/browser/1"});
        EXPECT_FALSE(session.selectedText({}));
    }
    EXPECT_TRUE(opened);
}

TEST(DevToolsSessionTest, ABrowserThatWasToldItsPortIsAskedForItsPathAndWhoItIs)
{
    const QByteArray version = R"({"webSocketDebuggerUrl": "ws://127.0.0.1:1/devtools/browser/7-a"})";
    const struct
    {
        QByteArray version;
        QList<qint64> processes;
        bool isOpened;
    } cases[] = {
        {version, {4711, 2}, true},
        {version, {4711, 3}, false},
        {"{}", {2}, false},
        {"[1", {2}, false},
        {QByteArray(1 << 20, ' '), {2}, false},
    };
    for (const auto &one : cases) {
        FakeBrowser browser({});
        QByteArrayList heads;
        {
            LoopbackPeer peer([&](LoopbackPeer::Connection &connection) {
                if (!heads.isEmpty())
                    return heads.append(browser.serve(connection));
                heads << connection.readHead();
                connection.write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n" + one.version);
            });
            DevToolsSession session(QDeadlineTimer(60s));
            EXPECT_EQ(session.open({peer.port(), {}, one.processes}), one.isOpened);
        }
        EXPECT_TRUE(heads[0].startsWith("GET /json/version HTTP/1.1\r\n"));
        EXPECT_EQ(heads.value(1).startsWith("GET /devtools/browser/7-a "), one.version == version);
    }
}

struct FixedWindow final : ActiveWindowSource
{
    std::optional<ActiveWindow> activeWindow() override { return window; }
    std::optional<ActiveWindow> window =
        ActiveWindow{::getpid(), QStringLiteral("Harbour - Chromium"), 1, true};
};

/// This very process stands for the browser.
struct DevToolsScriptRunnerTest : testing::Test
{
    void SetUp() override
    {
        const QDir profile(home.filePath(QStringLiteral(".config/chromium")));
        ASSERT_TRUE(profile.mkpath(QStringLiteral(".")));
        qputenv("HOME", QFile::encodeName(home.path()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/elsewhere")));
        const QByteArray holder = "host-" + QByteArray::number(::getpid());
        ASSERT_EQ(::symlink(holder.constData(),
                            QFile::encodeName(profile.filePath(QStringLiteral("SingletonLock"))).constData()),
                  0);
        QFile file(profile.filePath(QStringLiteral("DevToolsActivePort")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::number(peer.port()) + "\n/devtools/browser/1");
    }
    void bringToFront(const char *identifier)
    {
        platform.workspace().frontmost = RunningApplication{{}, QString::fromLatin1(identifier), ::getpid()};
    }

    QTemporaryDir home;
    FakeBrowser browser{{"visible|Other|no", "visible|Harbour|yes"}};
    LoopbackPeer peer{[this](LoopbackPeer::Connection &connection) { browser.serve(connection); }};
    TestPlatform platform;
    std::shared_ptr<FixedWindow> window = std::make_shared<FixedWindow>();
    DevToolsScriptRunner runner{platform.workspace(), window, 60s};
};

TEST_F(DevToolsScriptRunnerTest, RunsTheOneScriptForTheFrontmostBrowser)
{
    bringToFront("org.chromium.Chromium");
    AppleScriptCapturer::selectedText();
    const QString script = platform.scriptRunner().sources.value(0);
    EXPECT_EQ(runner.run(script), QStringLiteral("yes"));
    window->window.reset();
    EXPECT_EQ(runner.run(script), QStringLiteral("no"));

    EXPECT_EQ(peer.connections(), 2);
    const QString otherScripts[] = {
        {},
        script + QLatin1Char('\n'),
        QString(script).replace(QStringLiteral("window.getSelection().toString()"), QStringLiteral("1")),
        QString(script).replace(QStringLiteral("org.chromium.Chromium"), QStringLiteral("com.google.Chrome")),
        QStringLiteral("return \"text\""),
    };
    for (const QString &other : otherScripts)
        EXPECT_FALSE(runner.run(other)) << other.toStdString();
    bringToFront("com.google.Chrome");
    EXPECT_FALSE(runner.run(script));
    platform.workspace().frontmost.reset();
    EXPECT_FALSE(runner.run(script));
    EXPECT_EQ(peer.connections(), 2);
}

} // namespace
} // namespace tovi
