// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
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

struct FakePage
{
    enum State { Hidden, Visible, Focused, Gone, Throws, Hangs };
    QString title;
    State state;
    QString text;
};

/// A browser's DevTools server with some pages.
struct FakeBrowser
{
    explicit FakeBrowser(QList<FakePage> list)
        : pages(std::move(list))
    {}

    QJsonObject answer(const QJsonObject &message)
    {
        const QString method = message[QLatin1String("method")].toString();
        const QJsonObject parameters = message[QLatin1String("params")].toObject();
        if (method == QLatin1String("Target.getTargets")) {
            QJsonArray targets{QJsonObject{{QStringLiteral("type"), QStringLiteral("service_worker")},
                                           {QStringLiteral("title"), QStringLiteral("worker")}}};
            for (qsizetype i = 0; i < pages.size(); ++i)
                targets.append(QJsonObject{{QStringLiteral("type"), QStringLiteral("page")},
                                           {QStringLiteral("targetId"), QString::number(i)},
                                           {QStringLiteral("title"), pages[i].title}});
            return {{QStringLiteral("targetInfos"), targets}};
        }
        if (method == QLatin1String("Target.attachToTarget")) {
            const QString id = parameters[QLatin1String("targetId")].toString();
            asked << id.toInt();
            attached += pages[id.toInt()].state != FakePage::Gone;
            return pages[id.toInt()].state == FakePage::Gone ? QJsonObject()
                                                             : QJsonObject{{QStringLiteral("sessionId"), id}};
        }
        if (method == QLatin1String("Target.detachFromTarget")) {
            --attached;
            return {};
        }
        const FakePage &page = pages[message[QLatin1String("sessionId")].toString().toInt()];
        if (method != QLatin1String("Runtime.evaluate") || page.state == FakePage::Throws)
            return {
                {QStringLiteral("result"), QJsonObject{{QStringLiteral("type"), QStringLiteral("object")}}},
                {QStringLiteral("exceptionDetails"), QJsonObject()}};
        const QJsonObject value{{QStringLiteral("visible"), page.state != FakePage::Hidden},
                                {QStringLiteral("focused"), page.state == FakePage::Focused},
                                {QStringLiteral("text"), page.text}};
        return {{QStringLiteral("result"), QJsonObject{{QStringLiteral("value"), value}}}};
    }

    void serve(LoopbackPeer::Connection &connection)
    {
        connection.acceptWebSocket();
        for (QByteArray frame; !(frame = connection.readFrame()).isEmpty();) {
            const QJsonObject message = QJsonDocument::fromJson(frame.mid(1)).object();
            if (!message.contains(QLatin1String("id"))) {
                wasClosed = quint8(frame[0]) == 0x88;
                break;
            }
            const QJsonObject result = answer(message);
            const bool hangs =
                message.contains(QLatin1String("sessionId")) &&
                pages[message[QLatin1String("sessionId")].toString().toInt()].state == FakePage::Hangs;
            connection.writeText(R"({"method":"Target.targetInfoChanged","params":{}})");
            if (hangs)
                continue;
            const QString key = result.isEmpty() ? QStringLiteral("error") : QStringLiteral("result");
            connection.writeText(
                QJsonDocument(
                    QJsonObject{{QStringLiteral("id"), message[QLatin1String("id")]}, {key, result}})
                    .toJson());
        }
    }

    QList<FakePage> pages;
    QList<int> asked;
    int attached = 0;
    bool wasClosed = false;
};

TEST(DevToolsSessionTest, AsksThePageThatTheUserSees)
{
    const QString window = QStringLiteral("News - Paper - Chromium");
    const auto page = [](const char *title, FakePage::State state, const char *text = "") {
        return FakePage{QString::fromUtf8(title), state, QString::fromUtf8(text)};
    };
    using enum FakePage::State;
    const struct
    {
        const char *name;
        QList<FakePage> pages;
        QList<int> asked;
        std::optional<QString> text;
    } cases[] = {
        {"the window's title leads",
         {page("Other", Visible), page("News", Hidden), page("News - Paper", Focused, "a 🚢\n")},
         {2},
         QString::fromUtf8("a 🚢\n")},
        {"of two with the title, the one with the focus",
         {page("News - Paper", Visible, "no"), page("News - Paper", Focused, "yes")},
         {0, 1},
         QStringLiteral("yes")},
        {"none has the focus",
         {page("Other", Visible), page("News - Paper", Hidden), page("News - Paper", Visible, "yes")},
         {1, 2},
         QStringLiteral("yes")},
        {"the title tells nothing",
         {page("", Hidden), page("x", Visible, "no"), page("y", Focused, "yes")},
         {0, 1, 2},
         QStringLiteral("yes")},
        {"nor does the focus",
         {page("x", Hidden), page("y", Visible, "yes"), page("z", Visible, "no")},
         {0, 1, 2},
         QStringLiteral("yes")},
        {"an installed application",
         {page("x", Visible), page("Chromium", Focused, "yes")},
         {1},
         QStringLiteral("yes")},
        {"pages that cannot tell",
         {page("x", Gone), page("y", Throws), page("z", Visible, "yes")},
         {0, 1, 2},
         QStringLiteral("yes")},
        {"nothing selected", {page("News", Focused)}, {0}, QString()},
        {"nothing visible", {page("News", Hidden, "no")}, {0}, {}},
        {"no page", {}, {}, {}},
    };
    for (const auto &one : cases) {
        SCOPED_TRACE(one.name);
        FakeBrowser browser(one.pages);
        {
            LoopbackPeer peer([&](LoopbackPeer::Connection &connection) { browser.serve(connection); });
            DevToolsSession session(QDeadlineTimer(60s));
            ASSERT_TRUE(session.open({peer.port(), "/devtools/browser/1"}));
            EXPECT_EQ(session.selectedText(window), one.text);
        }
        EXPECT_EQ(browser.asked, one.asked);
        EXPECT_EQ(browser.attached, 0);
        EXPECT_TRUE(browser.wasClosed);
    }
}

TEST(DevToolsSessionTest, APageThatHangsEndsWithTheDeadline)
{
    FakeBrowser browser({{QStringLiteral("x"), FakePage::Visible, QStringLiteral("no")},
                         {QStringLiteral("y"), FakePage::Hangs, {}}});
    LoopbackPeer peer([&](LoopbackPeer::Connection &connection) { browser.serve(connection); });
    bool opened = false;
    for (auto limit = 50ms; !opened && limit < 60s; limit *= 2) {
        DevToolsSession session{QDeadlineTimer(limit)};
        opened = session.open({peer.port(), "/devtools/browser/1"});
        EXPECT_FALSE(session.selectedText({}));
    }
    EXPECT_TRUE(opened);
}

TEST(DevToolsSessionTest, ABrowserThatWasToldItsPortIsAskedForItsPath)
{
    const struct
    {
        QByteArray version;
        QByteArray request; ///< of the second connection; none when it must not come
    } cases[] = {
        {R"({"webSocketDebuggerUrl": "ws://127.0.0.1:1/devtools/browser/7-a"})",
         "GET /devtools/browser/7-a HTTP/1.1"},
        {R"({"webSocketDebuggerUrl": "ws://127.0.0.1:1/a b\r\nX: y"})", "GET /a%20b%0D%0AX:%20y HTTP/1.1"},
        {"{}", ""},
        {"[1", ""},
        {QByteArray(1 << 20, ' '), ""},
    };
    for (const auto &one : cases) {
        QByteArrayList requests;
        {
            LoopbackPeer peer([&](LoopbackPeer::Connection &connection) {
                requests << connection.readHead().split('\r').first();
                if (requests.size() == 1)
                    connection.write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n\r\n" +
                                     one.version);
            });
            EXPECT_FALSE(DevToolsSession(QDeadlineTimer(60s)).open({peer.port(), {}}));
        }
        EXPECT_EQ(requests.value(0), "GET /json/version HTTP/1.1");
        EXPECT_EQ(requests.value(1), one.request);
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
    FakeBrowser browser{{{QStringLiteral("Other"), FakePage::Visible, QStringLiteral("no")},
                         {QStringLiteral("Harbour"), FakePage::Visible, QStringLiteral("yes")}}};
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
    window->window->processIdentifier = 1; // somebody else's window came to the front meanwhile
    EXPECT_EQ(runner.run(script), QStringLiteral("no"));
    window->window.reset();
    EXPECT_EQ(runner.run(script), QStringLiteral("no"));

    EXPECT_EQ(peer.connections(), 3);
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
    EXPECT_EQ(peer.connections(), 3);
}

} // namespace
} // namespace tovi
