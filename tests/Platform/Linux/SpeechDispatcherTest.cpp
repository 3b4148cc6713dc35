// SPDX-License-Identifier: MIT
#include <csignal>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "Platform/Linux/SpeechDispatcherSynthesizer.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

/// A voice without a sound: it keeps what it is told, and files beside it say how it behaves.
const char module[] = R"(#!/bin/sh
folder=$(dirname "$0")
keep() { while IFS= read -r line && [ "$line" != . ]; do echo "$line" >> "$folder/$1"; done; }
while IFS= read -r command; do
    case $command in
    INIT) echo "299-ready"; echo "299 OK LOADED SUCCESSFULLY" ;;
    AUDIO) echo "207 OK RECEIVING AUDIO SETTINGS"; keep log; echo "203 OK AUDIO INITIALIZED" ;;
    LOGLEVEL) echo "207 OK RECEIVING LOGLEVEL SETTINGS"; keep log; echo "203 OK LOG LEVEL SET" ;;
    SET) echo "203 OK RECEIVING SETTINGS"; keep heard; echo "203 OK SETTINGS RECEIVED" ;;
    SPEAK) echo "202 OK RECEIVING MESSAGE"; keep heard; echo "200 OK SPEAKING"
        [ -e "$folder/mute" ] || echo "701 BEGIN"
        [ -e "$folder/mute" ] || [ -e "$folder/endless" ] || echo "702 END" ;;
    STOP) echo "703 STOP" ;;
    "LIST VOICES"*) echo "304 CANT LIST VOICES" ;;
    QUIT) echo "210 OK QUIT"; exit ;;
    esac
done
)";

/// Starts a real daemon with that voice, as the first reading does in a session.
struct SpeechDispatcherTest : testing::Test
{
    TestClock clock;
    TestSystemLog log;
    std::unique_ptr<SpeechDispatcherSynthesizer> synthesizer = makeSynthesizer();
    QStringList ends;

    static QDir folder()
    {
        static const QTemporaryDir ofTheProcess; // the library looks up its own only once
        return QDir(ofTheProcess.path());
    }
    static QString path(const QString &name)
    {
        return folder().filePath(QStringLiteral("speech-dispatcher/") + name);
    }
    static void write(const QString &name, const QByteArray &content)
    {
        QDir().mkpath(path({}));
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    static QByteArray read(const QString &name)
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void SetUp() override
    {
        if (QStandardPaths::findExecutable(QStringLiteral("speech-dispatcher")).isEmpty())
            GTEST_SKIP() << "speech-dispatcher is not installed";
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder().path()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder().path()));
        write(QStringLiteral("module"), module);
        configure({});
    }
    void TearDown() override
    {
        synthesizer.reset();
        signalDaemon(SIGKILL);
        folder().removeRecursively();
        folder().mkpath(QStringLiteral("."));
    }
    static void configure(const QByteArray &more)
    {
        const QByteArray path = QFile::encodeName(folder().filePath(QStringLiteral("speech-dispatcher/")));
        write(QStringLiteral("speechd.conf"),
              "LogLevel 0\nAddModule \"test\" \"" + path + "module\" \"\"\nDefaultModule test\n" + more);
    }
    std::unique_ptr<SpeechDispatcherSynthesizer> makeSynthesizer()
    {
        auto made = std::make_unique<SpeechDispatcherSynthesizer>(clock, log);
        made->onFinish = [this](const auto &utterance) {
            ends << QStringLiteral("finish ") + utterance->text;
        };
        made->onCancel = [this](const auto &utterance) {
            ends << QStringLiteral("cancel ") + utterance->text;
        };
        return made;
    }
    static void signalDaemon(int signal)
    {
        const int pid = read(QStringLiteral("pid/speech-dispatcher.pid")).trimmed().toInt();
        if (pid <= 0 || signal == 0)
            return;
        ::kill(pid, signal);
        if (signal != SIGKILL)
            return;
        // Dead once its sockets are closed.
        const QString files = QStringLiteral("/proc/%1/fd").arg(pid);
        EXPECT_TRUE(
            waitUntil([&] { return QDir(files).entryList(QDir::System | QDir::NoDotAndDotDot).isEmpty(); }));
    }

    void speak(const QString &text, const QString &language = QStringLiteral("en-US"), double rate = 0.5)
    {
        synthesizer->speak(std::make_shared<SpeechUtterance>(SpeechUtterance{text, rate, language}));
    }
    bool isHeard(const QByteArray &text)
    {
        return waitUntil([&] { return read(QStringLiteral("heard")).contains(text); });
    }
    /// What was reported since, once something was; no time passes.
    QString endsAtOnce() { return endsWithin(0s); }
    /// As above, while this much time passes at the most: fast, but so that the daemon keeps up.
    QString endsWithin(Clock::Duration limit)
    {
        QElapsedTimer sinceSecond;
        sinceSecond.start();
        EXPECT_TRUE(waitUntil([&] {
            if (limit > 0s && sinceSecond.hasExpired(20)) {
                clock.advance(1s);
                limit -= 1s;
                sinceSecond.start();
            }
            return !ends.isEmpty();
        }));
        return std::exchange(ends, {}).join(u' ');
    }
};

TEST_F(SpeechDispatcherTest, ReadsAsToldAndReportsTheEnd)
{
    const struct
    {
        double rate;
        const char *language;
        const char *text;
        const char *heard;
    } cases[] = {
        {0.5, "ja-JP", "こんにちは", "rate=0\n"},
        {0, "xx", "slow", "rate=-100\n"},
        {1, "zh-CN", "a < b", "rate=100\n"},
        {9, "ru-RU", "x\r\n.\r\nSTOP SELF\r\ny", "rate=100\n"},
    };
    for (const auto &[rate, language, text, heard] : cases) {
        QFile::remove(path(QStringLiteral("heard")));
        speak(QString::fromUtf8(text), QLatin1String(language), rate);
        EXPECT_EQ(endsAtOnce(), QStringLiteral("finish ") + QString::fromUtf8(text));
        EXPECT_TRUE(isHeard(heard)) << text;
        EXPECT_TRUE(isHeard("language=" + QByteArray(language).toLower().left(2))) << text;
    }
    EXPECT_TRUE(isHeard("y</speak>"));
    const QString longText = QStringLiteral("word ").repeated(20000) + QChar(QChar::Null) + u'z';
    speak(longText);
    endsAtOnce();
    EXPECT_TRUE(isHeard("word z</speak>"));
    EXPECT_EQ(clock.pendingActions(), 0);
}

TEST_F(SpeechDispatcherTest, CutsOffAtOnceAndReportsEachOnce)
{
    write(QStringLiteral("endless"), {});
    speak(QStringLiteral("first"));
    ASSERT_TRUE(isHeard("first"));
    speak(QStringLiteral("second"));
    EXPECT_EQ(endsAtOnce(), QStringLiteral("cancel first"));
    ASSERT_TRUE(isHeard("second"));
    synthesizer->stop();
    synthesizer->stop();
    EXPECT_TRUE(ends.isEmpty());
    EXPECT_EQ(endsAtOnce(), QStringLiteral("cancel second"));
    speak(QStringLiteral("third")); // is stopped wherever it is on its way
    synthesizer->stop();
    EXPECT_EQ(endsAtOnce(), QStringLiteral("cancel third"));
    speak(QStringLiteral("fourth"));
    ASSERT_TRUE(isHeard("fourth")); // and cut off by the end of the program
}

TEST_F(SpeechDispatcherTest, WithoutADaemonAReadingJustEnds)
{
    configure("DisableAutoSpawn\n");
    speak(QStringLiteral("text"));
    EXPECT_EQ(endsAtOnce(), QStringLiteral("finish text"));
    EXPECT_EQ(log.lines.size(), 1);
}

TEST_F(SpeechDispatcherTest, AReadingEndsWhateverGoesWrong)
{
    const struct
    {
        const char *voice; // how it behaves; "" when idle
        int signal;
    } faults[] = {{"mute", 0},   {"endless", 0},       {"endless", SIGKILL},
                  {"", SIGKILL}, {"endless", SIGSTOP}, {"", SIGSTOP}};
    for (const auto &[voice, signal] : faults) {
        SCOPED_TRACE(testing::Message() << "voice '" << voice << "', signal " << signal);
        // A long text may take long, but not while nobody gives a sign of life.
        const QString text = QStringLiteral("text").repeated(signal == SIGSTOP ? 100 : 1);
        speak(QStringLiteral("before"));
        EXPECT_EQ(endsAtOnce(), QStringLiteral("finish before"));
        if (*voice) {
            write(QLatin1String(voice), {});
            speak(text);
            EXPECT_TRUE(isHeard("text"));
        }
        signalDaemon(signal);
        if (!*voice)
            speak(text);
        EXPECT_EQ(endsWithin(signal == SIGKILL ? 3s : 15s), QStringLiteral("finish ") + text);
        signalDaemon(SIGCONT);
        for (const char *file : {"mute", "endless", "heard"})
            QFile::remove(path(QLatin1String(file)));
    }
}

TEST_F(SpeechDispatcherTest, ADaemonMayGoAfterAnyAnswer)
{
    for (int answers = 0; answers < 8; ++answers) {
        int left = answers;
        QLocalServer daemon;
        QDir().mkpath(path({}));
        QFile::remove(path(QStringLiteral("speechd.sock")));
        ASSERT_TRUE(daemon.listen(path(QStringLiteral("speechd.sock"))));
        QObject::connect(&daemon, &QLocalServer::newConnection, &daemon, [&] {
            auto *client = daemon.nextPendingConnection();
            QObject::connect(client, &QLocalSocket::readyRead, client, [&left, client] {
                client->readAll();
                if (left-- > 0)
                    client->write("200 OK\r\n");
                else
                    client->abort();
            });
        });
        speak(QStringLiteral("text"));
        EXPECT_EQ(endsAtOnce(), QStringLiteral("finish text")) << answers;
    }
}

TEST_F(SpeechDispatcherTest, ADaemonThatHangsHoldsNobodyUp)
{
    speak(QStringLiteral("start"));
    ASSERT_EQ(endsAtOnce(), QStringLiteral("finish start"));
    synthesizer = makeSynthesizer();
    signalDaemon(SIGSTOP); // it cannot even be connected to
    speak(QStringLiteral("first"));
    speak(QStringLiteral("second"));
    EXPECT_EQ(endsWithin(60s), QStringLiteral("cancel first"));
    EXPECT_EQ(endsWithin(60s), QStringLiteral("finish second"));
    speak(QStringLiteral("third"));
    synthesizer->stop();
    EXPECT_EQ(endsWithin(60s), QStringLiteral("cancel third"));
    synthesizer.reset(); // ends, too
    EXPECT_TRUE(ends.isEmpty());
}

} // namespace
} // namespace tovi
