// SPDX-License-Identifier: MIT
#include "Updater.h"

#include <algorithm>

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <gtest/gtest.h>

#include "Localization.h"
#include "Support/WebFixture.h"
#include "UI/Forms/SymbolView.h"
#include "UI/UpdateWindow.h"

namespace tovi {
namespace {

const QUrl feedAddress(QStringLiteral("https://example.org/feeds/tovi.xml"));

QByteArray feed(const QByteArray &items)
{
    return "<?xml version='1.0'?><rss version='2.0' xmlns:u='urn:updates'><channel><title>Tovi</title>"
           "<link>https://example.org</link>" +
           items + "</channel></rss>";
}

TEST(Versions, AreOrdered)
{
    // Each after the one before it; "=" joins equal ones.
    const char *ascending[] = {"0.9rc2",
                               "0.9=v0.9=0.9.0=0.9+build5",
                               "0.9.1-alpha",
                               "0.9.1-beta.2",
                               "0.9.1-beta.10",
                               "0.9.1",
                               "0.10",
                               "1",
                               "1.0.1",
                               "37",
                               "99999999999999999999",
                               "100000000000000000000"};
    QList<QStringList> ranks;
    for (const char *rank : ascending)
        ranks << QString::fromLatin1(rank).split(u'=');
    for (qsizetype i = 0; i < ranks.size(); ++i) {
        for (qsizetype j = 0; j < ranks.size(); ++j) {
            for (const QString &one : ranks[i]) {
                for (const QString &other : ranks[j])
                    EXPECT_EQ(compareVersions(one, other), i <=> j) << qPrintable(one + u' ' + other);
            }
        }
    }
}

TEST(Appcast, OffersTheNewestItemForThisSystem)
{
    struct Case
    {
        const char *items;
        const char *version; ///< the offered one; null for none
        const char *page;
    };
    const Case cases[] = {
        {"", nullptr, ""},
        {"<item><enclosure url='https://e.org/a' u:version='5' u:shortVersionString='1.4'/></item>"
         "<item><enclosure url='https://e.org/b' u:version='6' u:shortVersionString='1.5'/></item>"
         "<item><enclosure url='https://e.org/c' version='4' shortVersionString='1.3'/></item>",
         "1.5", "https://e.org/b"},
        {"<item><link>/get</link><u:version>7</u:version><u:shortVersionString>2.0</u:shortVersionString></"
         "item>",
         "2.0", "https://example.org/get"},
        {"<item><title>Now: 3.1.4-beta.1, at last</title></item>", "3.1.4-beta.1", ""},
        {"<item><enclosure version='0.1.0'/></item>", nullptr, ""},
        {"<item><enclosure version='2'/></item>", "2", ""},
        {"<item><enclosure version='1' shortVersionString='0.1.0'/></item>", nullptr, ""},
        {"<item><enclosure version='2' shortVersionString='0.1.0'/></item>", "0.1.0", ""},
        {"<item><enclosure version='9.0' u:os='windows'/></item><item><enclosure version='8.0' "
         "u:os='Linux'/></item>",
         "8.0", ""},
        {"<item><u:channel>beta</u:channel><enclosure version='9.0'/></item>", nullptr, ""},
        {"<item><u:minimumSystemVersion>99999</u:minimumSystemVersion><enclosure version='9.0'/></item>",
         "9.0", ""},
        {"<item><u:minimumSystemVersion>99999</u:minimumSystemVersion><enclosure version='9.0' "
         "os='linux'/></item>",
         nullptr, ""},
        {"<item><u:minimumSystemVersion>2.6</u:minimumSystemVersion><enclosure version='9.0' "
         "os='linux'/></item>",
         "9.0", ""},
        {"<item><link>javascript:alert(1)</link><enclosure version='9.0' url='http://e.org/x'/></item>",
         "9.0", ""},
        {"<item><link>http://127.0.0.1:80/x</link><enclosure version='9.0'/></item>", "9.0", ""},
        {"<item><enclosure version='5'/></item><item><enclosure version='3' shortVersionString='6.0'/></item>"
         "<item><enclosure version='10' shortVersionString='1.0'/></item>",
         "6.0", ""},
        {"<item><enclosure "
         "version='9.0000000000000000000000000000000000000000000000000000000000000001'/></item>"
         "<item><enclosure version='8.0'/></item>",
         "8.0", ""},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.items);
        auto items = Appcast::parse(feed(c.items), feedAddress);
        ASSERT_TRUE(items);
        const auto newest = Appcast::newest(*items, u"0.1.0", u"1");
        std::reverse(items->begin(), items->end());
        EXPECT_EQ(Appcast::newest(*items, u"0.1.0", u"1"), newest);
        ASSERT_EQ(newest.has_value(), c.version != nullptr);
        if (newest) {
            EXPECT_EQ(newest->displayVersion(), QLatin1String(c.version));
            EXPECT_EQ(newest->page.toString(), QLatin1String(c.page));
        }
    }
    const auto described = Appcast::parse(feed("<item><description>ours</description><u:description>odd"
                                               "</u:description><enclosure version='9'/></item>"),
                                          feedAddress);
    ASSERT_TRUE(described && described->size() == 1);
    EXPECT_EQ(described->first().notes, QStringLiteral("ours"));
    for (const QByteArray &none : {QByteArray(), QByteArray("<html></html>"), QByteArray("<rss></rss>"),
                                   feed("<item>").chopped(20), QByteArray("{}")})
        EXPECT_FALSE(Appcast::parse(none, feedAddress)) << none.constData();
    EXPECT_FALSE(Appcast::parse(feed("<item><a>" + QByteArray("<b>").repeated(300000)), feedAddress));
}

TEST(Appcast, NotesAreText)
{
    const std::pair<const char *, const char *> cases[] = {
        {"plain\nlines & more, 1 < 2", "plain\nlines & more, 1 < 2"},
        {"<h2>New</h2><ul><li>One</li><li>Two &amp; &#x41;&eacute;</li></ul>",
         "New\n\n• One\n• Two & A&eacute;"},
        {"a<script>evil()</script>b<STYLE>p{}</style >c<!-- <p>hidden -->d", "abcd"},
        {"<img src='https://tracker'>text<script>", "text"},
        {"cut <p", "cut"},
        {"<a class=x href='https://e.org/?a&amp;b'>all</a>, <a href='https://e.org'>https://e.org</a>, "
         "<a href='javascript:x'>run</a>",
         "all (https://e.org/?a&b), https://e.org, run"},
    };
    for (const auto &[html, text] : cases)
        EXPECT_EQ(Appcast::plainText(QString::fromUtf8(html)), QString::fromUtf8(text));
}

struct Updates : testing::Test, WebFixture
{
    Updates() { setFeed(server.origin() + QStringLiteral("/feed")); }
    ~Updates() override { qunsetenv("TOVI_UPDATE_FEED_URL"); }
    static void setFeed(const QString &address) { qputenv("TOVI_UPDATE_FEED_URL", address.toUtf8()); }

    void serve(const QByteArray &items, const QByteArray &notes = {}, int status = 200)
    {
        answer = [=](const ScriptedServer::Request &request, ScriptedServer::Reply &reply) {
            if (request.target == "/feed")
                reply.answer(status, feed(items));
            else
                reply.answer(notes.isEmpty() ? 404 : 200, notes);
        };
    }
    UpdateWindow *window()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *found = qobject_cast<UpdateWindow *>(widget); found && found->isVisible())
                return found;
        }
        return nullptr;
    }
    QString message() { return window() ? window()->findChild<QLabel *>()->text() : QString(); }
    /// Once the check has ended.
    bool says(const QString &part)
    {
        using Phase = UpdateController::State::Phase;
        waitUntil([] { return Updater::controller().state->phase != Phase::checking; });
        return waitUntil([&] { return message().contains(part); });
    }
};

TEST_F(Updates, AreShownWithTheirNotesAndADownloadPage)
{
    serve("<item><link>https://e.org/get%20it</link><u:releaseNotesLink>/notes</u:releaseNotesLink>"
          "<description>short</description><enclosure version='9' shortVersionString='0.9'/></item>",
          "<p>Much <b>faster</b></p>");
    UpdateWindow::checkForUpdates();
    EXPECT_TRUE(window()) << "it shows at once that it looks";
    const QPoint middle = window()->geometry().center();
    const int height = window()->height();
    EXPECT_EQ(platform.application().policy, Application::ActivationPolicy::Regular);
    ASSERT_TRUE(says(QStringLiteral("Tovi 0.9 is available. You have 0.1.0.")));
    auto *notes = window()->findChild<QPlainTextEdit *>();
    EXPECT_EQ(notes->toPlainText(), QStringLiteral("Much faster"));
    drainMainQueue();
    EXPECT_GT(window()->height(), height);
    EXPECT_LE((window()->geometry().center() - middle).manhattanLength(), 2);
    notes->setFocus();
    Localization::shared().language = AppLanguage::de;
    drainMainQueue();
    EXPECT_EQ(window()->focusWidget(), notes);
    Localization::shared().language = AppLanguage::system;
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(notes, &enter);
    EXPECT_EQ(platform.workspace().opened, QStringList{QStringLiteral("https://e.org/get%20it")});
    EXPECT_FALSE(window());
    EXPECT_EQ(platform.application().policy, Application::ActivationPolicy::Accessory);
}

TEST_F(Updates, SayWhyThereAreNone)
{
    struct Case
    {
        const char *items;
        int status;
        QString address;
        const char *message;
    };
    const QString usual = server.origin() + QStringLiteral("/feed");
    const Case cases[] = {
        {"<item><enclosure version='1'/></item>", 200, usual, "0.1.0 is the newest version"},
        {"", 503, usual, "could not be loaded. Try again later. (HTTP 503)"},
        {"", 200, QStringLiteral("http://127.0.0.1:1/feed"), "could not be loaded"},
        {"<item>", 200, usual, "could not be read"},
        {"", 200, QStringLiteral("http://example.org/feed"), "not secure"},
        {"", 200, QStringLiteral("file:///etc/passwd"), "not secure"},
        {"", 200, {}, "does not know where"},
    };
    for (const Case &c : cases) {
        serve(c.items, {}, c.status);
        setFeed(c.address);
        UpdateWindow::checkForUpdates();
        EXPECT_TRUE(says(QString::fromUtf8(c.message))) << c.message << qPrintable(message());
        EXPECT_EQ(window()->findChild<SymbolView *>()->isVisible(), &c != cases) << "a warning sign";
    }
    const QByteArray long_(2 * 1024 * 1024, ' ');
    serve(long_);
    setFeed(usual);
    UpdateWindow::checkForUpdates();
    EXPECT_TRUE(says(QStringLiteral("could not be read")));
}

TEST_F(Updates, AreLookedForEachDayAfterTheFirstTimeAndToldOnce)
{
    using namespace std::chrono_literals;
    serve("<item><enclosure version='1'/></item>");
    platform.clock().advance(48h);
    EXPECT_TRUE(server.requests().isEmpty());
    UpdateWindow::checkForUpdates();
    ASSERT_TRUE(says(QStringLiteral("newest")));
    window()->close();
    int answers = 0;
    const Subscription watch = Updater::controller().onWillChange([&] { ++answers; });
    const auto nextDay = [&] {
        const int before = answers;
        platform.clock().advance(24h);
        ASSERT_TRUE(waitUntil([&] { return answers > before; }));
        drainMainQueue();
    };
    nextDay();
    EXPECT_FALSE(window());
    serve("<item><enclosure version='2.0'/></item>");
    nextDay();
    ASSERT_TRUE(says(QStringLiteral("2.0")));
    window()->close();
    nextDay();
    EXPECT_FALSE(window());
}

} // namespace
} // namespace tovi
