// SPDX-License-Identifier: MIT
#include <csignal>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <unistd.h>

#include "Platform/Linux/ApertiumFramework.h"
#include "Platform/Linux/ApertiumModes.h"
#include "Platform/Linux/ApertiumPipeline.h"
#include "Platform/Linux/ApertiumProcess.h"
#include "Support/TestPlatform.h"

void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Availability = TranslationFramework::Availability;

const QString en = QStringLiteral("en");
const QString es = QStringLiteral("es");
const QString fr = QStringLiteral("fr");

/// The leaders of the running pipelines' process groups: this program's children.
QList<pid_t> runningPipelines()
{
    QList<pid_t> pids;
    const QString tasks = QStringLiteral("/proc/self/task/");
    for (const QString &task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks + task + QStringLiteral("/children"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &pid : file.readAll().simplified().split(' ')) {
            if (!pid.isEmpty())
                pids << pid.toInt();
        }
    }
    return pids;
}

class ApertiumTest : public testing::Test
{
protected:
    std::shared_ptr<TranslationSession> open(const std::optional<QString> &source, const QString &target)
    {
        std::shared_ptr<TranslationSession> opened;
        bool isAnswered = false;
        framework->openSession(source, target, [&](std::shared_ptr<TranslationSession> session) {
            opened = std::move(session);
            isAnswered = true;
        });
        EXPECT_TRUE(waitUntil([&] { return isAnswered; }));
        return opened;
    }
    /// The answer, or "error: " and the description.
    static QString result(QFuture<QString> future)
    {
        if (!waitUntil([&] { return future.isFinished(); }))
            return QStringLiteral("no answer");
        try {
            return future.result();
        } catch (const TranslationFrameworkError &error) {
            return QStringLiteral("error: ") + error.description();
        }
    }
    QString translated(const QString &text, const std::optional<QString> &source, const QString &target)
    {
        const auto session = open(source, target);
        return session ? result(session->translate(text)) : QStringLiteral("no session");
    }

    TestPlatform platform;
    std::unique_ptr<ApertiumFramework> framework = std::make_unique<ApertiumFramework>();
};

/// Against programs of the test's own in place of Apertium's.
class ApertiumProgramsTest : public ApertiumTest
{
protected:
    void SetUp() override { framework = std::make_unique<ApertiumFramework>(folder.path()); }

    /// Installs a mode whose only stage is this shell script.
    void install(const QString &mode, const QByteArray &script)
    {
        const QString program = folder.filePath(mode + QStringLiteral(".sh"));
        write(program, "#!/bin/sh\n" + script);
        QFile(program).setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
        write(folder.filePath(mode + QStringLiteral(".mode")), '\'' + program.toUtf8() + "' $1 -g $2\n");
    }
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QTemporaryDir folder;
};

/// Against Apertium itself.
class ApertiumRealTest : public ApertiumTest
{
protected:
    void SetUp() override
    {
        for (const auto &[source, target] : {std::pair{en, es}, {es, fr}}) {
            if (framework->status(source, target) != Availability::Installed)
                GTEST_SKIP() << "apertium-eng-spa and apertium-fr-es are not installed";
        }
    }
};

const char *const echo = "exec cat";

TEST_F(ApertiumProgramsTest, AvailabilityFollowsTheInstalledModes)
{
    EXPECT_FALSE(framework->isPresent());
    EXPECT_EQ(framework->status(en, es), Availability::Supported); // by a package
    EXPECT_EQ(framework->status(en, fr), Availability::Supported); // by two
    EXPECT_EQ(framework->status(en, QStringLiteral("ja")), Availability::Unsupported);
    EXPECT_EQ(open(en, es), nullptr);

    install(QStringLiteral("eng-spa"), echo);
    install(QStringLiteral("eco-es-fr"), echo);
    install(QStringLiteral("spa-eng_US"), echo);
    EXPECT_TRUE(framework->isPresent());
    EXPECT_EQ(framework->status(en, es), Availability::Installed);
    EXPECT_EQ(framework->status(es, en), Availability::Supported);
    EXPECT_EQ(framework->status(es, fr), Availability::Supported);
    EXPECT_EQ(open(en, fr), nullptr);

    install(QStringLiteral("es-fr"), echo);
    install(QStringLiteral("rus-eng"), echo);
    EXPECT_EQ(framework->status(en, fr), Availability::Installed);
    EXPECT_EQ(framework->status(QStringLiteral("ru"), es), Availability::Installed);
    EXPECT_EQ(framework->status(QStringLiteral("ru"), fr), Availability::Unsupported); // two between
    EXPECT_EQ(framework->statusForText(QStringLiteral("Wo ist der Bahnhof?"), es), Availability::Unsupported);
    EXPECT_THROW(framework->statusForText(QStringLiteral("12 + 3 = 15"), es), TranslationFrameworkError);
}

TEST_F(ApertiumProgramsTest, EveryStageFlushes)
{
    const QString path = folder.filePath(QStringLiteral("x.mode"));
    write(path, "lt-proc '/a b|c/x.bin' | apertium-tagger -g $2 'y'|cg-proc z | lt-proc $1 'w'\n");
    EXPECT_EQ(ApertiumProcess::commandOfMode(path),
              QStringLiteral("lt-proc -z '/a b|c/x.bin' | apertium-tagger -z -g  'y'|cg-proc -z z | "
                             "lt-proc -z -n 'w'"));
}

TEST_F(ApertiumProgramsTest, TextsOfAnyShapeComeBackIntact)
{
    install(QStringLiteral("eng-spa"), echo);
    install(QStringLiteral("es-fr"), echo);
    QString everything;
    for (char16_t c = 0; c < 0x2100; ++c)
        everything += QStringLiteral("a") + QChar(c) + QStringLiteral("b ");
    const QStringList texts{
        QString(),
        QStringLiteral("   "),
        QStringLiteral("\n\n"),
        QStringLiteral("  two  blanks \t and\ttabs  "),
        QStringLiteral("one\r\ntwo\n\n\n   three\u2028four\n"),
        QStringLiteral("[a] {b} ^c$ /d\\ @e <f> \\[ \\\\ ^g<n>$ [[t:b:123]]h[[/]] .[] []"),
        QStringLiteral("*star #hash ~tilde +plus =is _low_ |pipe| `code`"),
        QStringLiteral("NUL") + QChar(0) + QStringLiteral("inside") + QChar(0),
        QStringLiteral("see https://example.com/a?b=c#d, www.example.org or me@example.com; file.tar.gz."),
        QStringLiteral(
            "smile 😀👩‍👩‍👧 flag 🇪🇸, 日本語 text, العربية, Привет ok"),
        QString(QChar(0xd83d)) + QStringLiteral("lone") + QChar(0xde00),
        QStringLiteral("no\u00a0break soft\u00adhyphen zero\u200bwidth e\u0301"),
        QString(7001, QLatin1Char('x')),
        everything,
    };
    for (const QString &text : texts) {
        const QString expected = text.normalized(QString::NormalizationForm_C);
        EXPECT_EQ(translated(text, en, es).normalized(QString::NormalizationForm_C), expected);
        EXPECT_EQ(translated(text, en, fr).normalized(QString::NormalizationForm_C), expected);
    }
}

TEST_F(ApertiumProgramsTest, AMegabyteNeverWaitsForAFullPipe)
{
    install(QStringLiteral("eng-spa"), echo);
    const QString text = QStringLiteral("The white house [is] big, ").repeated(40'000);
    EXPECT_EQ(translated(text, en, es), text);
    // One word, no place to cut.
    const QString word(1'000'000, QLatin1Char('x'));
    EXPECT_EQ(translated(word, en, es), word);
}

TEST_F(ApertiumProgramsTest, DeadProgramsAreReplacedOnce)
{
    // Reads both lines, answers the first and dies at the first start, works at the second.
    install(QStringLiteral("eng-spa"), "if mkdir \"$0.started\"; then head -zn2 >/dev/null; printf "
                                       "'uno.[]\\0'; exit 1; fi; exec sed -zu s/two/dos/");
    EXPECT_EQ(translated(QStringLiteral("one\ntwo"), en, es), QStringLiteral("uno\ndos"));
    install(QStringLiteral("spa-eng"), "exit 1");
    EXPECT_EQ(translated(QStringLiteral("uno"), es, en),
              QStringLiteral("error: The translation programs ended unexpectedly"));
    EXPECT_EQ(translated(QStringLiteral("123"), es, en), QStringLiteral("123"));
}

TEST_F(ApertiumProgramsTest, HungProgramsEndByDeadline)
{
    install(QStringLiteral("eng-spa"), "exec sleep 1000");
    const auto session = open(en, es);
    auto first = session->translate(QStringLiteral("one"));
    auto second = session->translate(QStringLiteral("two"));
    ASSERT_TRUE(waitUntil([&] { return runningPipelines().size() == 1; }));
    const auto hung = runningPipelines();
    install(QStringLiteral("eng-spa"), echo);
    drainMainQueue();
    ASSERT_TRUE(waitUntil([&] { return platform.clock().pendingActions() == 1; }));
    platform.clock().advance(ApertiumPipeline::replyLimit - 1s);
    EXPECT_EQ(runningPipelines(), hung);
    platform.clock().advance(1s);
    EXPECT_EQ(result(first), QStringLiteral("one"));
    EXPECT_EQ(result(second), QStringLiteral("two"));
}

TEST_F(ApertiumProgramsTest, IdleProgramsEndWithoutWakingUp)
{
    install(QStringLiteral("eng-spa"), echo);
    EXPECT_EQ(translated(QStringLiteral("one"), en, es), QStringLiteral("one"));
    EXPECT_EQ(runningPipelines().size(), 1);
    // The timer of the request gives way to the idle one.
    ASSERT_TRUE(waitUntil([&] { return platform.clock().pendingActions() == 1; }));
    platform.clock().advance(ApertiumPipeline::replyLimit + 1s);
    EXPECT_EQ(runningPipelines().size(), 1);
    platform.clock().advance(ApertiumPipeline::idleLimit);
    EXPECT_TRUE(waitUntil([&] { return runningPipelines().isEmpty(); }));
    EXPECT_EQ(platform.clock().pendingActions(), 0);
    EXPECT_EQ(translated(QStringLiteral("two"), en, es), QStringLiteral("two"));
}

TEST_F(ApertiumProgramsTest, EndingTheFrameworkEndsWhatRuns)
{
    install(QStringLiteral("eng-spa"), "exec sleep 1000");
    const auto session = open(en, es);
    auto underWay = session->translate(QStringLiteral("one"));
    ASSERT_TRUE(waitUntil([&] { return runningPipelines().size() == 1; }));
    framework.reset();
    EXPECT_TRUE(runningPipelines().isEmpty());
    EXPECT_TRUE(underWay.isFinished());
    EXPECT_TRUE(result(underWay).startsWith(QStringLiteral("error: ")));
    EXPECT_TRUE(result(session->translate(QStringLiteral("two"))).startsWith(QStringLiteral("error: ")));
}

TEST_F(ApertiumProgramsTest, TheLanguageIsDetectedForEachText)
{
    install(QStringLiteral("eng-spa"), "exec sed -zu s/hous/kas/");
    install(QStringLiteral("fr-es"), "exec sed -zu s/mais/cas/");
    const auto session = open(std::nullopt, es);
    EXPECT_EQ(result(session->translate(QStringLiteral("The house is big"))),
              QStringLiteral("The kase is big"));
    EXPECT_EQ(result(session->translate(QStringLiteral("La maison est grande"))),
              QStringLiteral("La cason est grande"));
    EXPECT_EQ(result(session->translate(QStringLiteral("La casa es grande"))),
              QStringLiteral("La casa es grande"));
    EXPECT_TRUE(result(session->translate(QStringLiteral("Где находится вокзал?")))
                    .startsWith(QStringLiteral("error: ")));
}

TEST_F(ApertiumRealTest, Translates)
{
    EXPECT_EQ(translated(QStringLiteral("The red car"), en, fr), QStringLiteral("La voiture rouge"));
    EXPECT_EQ(translated(QStringLiteral("The red car"), std::nullopt, es), QStringLiteral("El coche rojo"));
    // Words that it does not know come back without a mark.
    EXPECT_EQ(translated(QStringLiteral("Zyxwq blorfs"), en, es), QStringLiteral("Zyxwq blorfs"));
}

TEST_F(ApertiumRealTest, KeepsWhatIsNotWords)
{
    EXPECT_EQ(
        translated(QStringLiteral("  red\n\n\t[blue] 😀 <b>green</b>\r\n日本語 https://example.com/red?x=1 "
                                  "^white$ \\ @ {black} *red* x") +
                       QChar(0) + QStringLiteral("yellow  "),
                   en, es),
        QStringLiteral("  rojo\n\n\t[azul] 😀 <b>verde</b>\r\n日本語 https://example.com/red?x=1 "
                       "^blanco$ \\ @ {negro} *rojo* x") +
            QChar(0) + QStringLiteral("amarillo  "));
}

TEST_F(ApertiumRealTest, SurvivesAKillAndAStopInMidSentence)
{
    const QString text = QStringLiteral("The white house is big. I like the red car.\n");
    const QString expected = translated(text, en, es);
    const auto session = open(en, es);
    for (const int signal : {SIGKILL, SIGSTOP}) {
        auto first = session->translate(text.repeated(400));
        auto second = session->translate(text);
        ASSERT_TRUE(waitUntil([] { return runningPipelines().size() == 1; }));
        const auto pipelines = runningPipelines();
        ASSERT_EQ(::kill(-pipelines.first(), signal), 0);
        EXPECT_TRUE(waitUntil([&] {
            // The stopped programs give no sign: only time tells. Others, once there, have their own.
            if (signal == SIGSTOP && platform.clock().pendingActions() == 1 &&
                runningPipelines() == pipelines)
                platform.clock().advance(ApertiumPipeline::replyLimit);
            return first.isFinished();
        }));
        EXPECT_EQ(result(first), expected.repeated(400));
        EXPECT_EQ(result(second), expected);
    }
}

} // namespace
} // namespace tovi
