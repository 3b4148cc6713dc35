// SPDX-License-Identifier: MIT
#include <csignal>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "Platform/Linux/JsonUserDefaults.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

const QString key = QStringLiteral("key");

struct JsonUserDefaultsTest : testing::Test
{
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("tovi/defaults.json"));
    TestSystemLog log;

    void put(const QByteArray &bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray bytes(const QString &suffix = {})
    {
        QFile file(path + suffix);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    QJsonObject onDisk() { return QJsonDocument::fromJson(bytes()).object(); }
};

TEST_F(JsonUserDefaultsTest, WritesReadableOwnerOnlyJsonAndKeepsUnknownKeys)
{
    put(R"({"future": [1, {"x": null}], "flag": true, "number": 2.5, "text": "ü"})");
    {
        JsonUserDefaults defaults(path, log);
        EXPECT_EQ(defaults.boolean(QStringLiteral("flag")), true);
        EXPECT_EQ(defaults.number(QStringLiteral("number")), 2.5);
        EXPECT_EQ(defaults.string(QStringLiteral("text")), QStringLiteral("ü"));
        EXPECT_EQ(defaults.number(QStringLiteral("flag")), std::nullopt);
        defaults.set(key, QJsonObject{{key, 1}});
        defaults.set(QStringLiteral("text"), QStringLiteral("new"));
    }
    JsonUserDefaults again(path, log);
    EXPECT_EQ(again.document(key), QJsonValue(QJsonObject{{key, 1}}));
    EXPECT_EQ(onDisk().size(), 5);
    EXPECT_EQ(onDisk()[QStringLiteral("future")].toArray().size(), 2);
    EXPECT_TRUE(bytes().contains("\n    \"flag\": true"));
    struct stat info = {};
    ASSERT_EQ(stat(path.toUtf8().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    EXPECT_TRUE(log.lines.isEmpty());
}

TEST_F(JsonUserDefaultsTest, WhatDoesNotParseIsKeptAndNeverOverwritten)
{
    const QByteArray broken[] = {R"({"target": "fr", "x)", "not json", "[1]", "", QByteArray(4, '\0')};
    int number = 0;
    for (const QByteArray &content : broken) {
        put(content);
        JsonUserDefaults defaults(path, log);
        EXPECT_EQ(defaults.string(QStringLiteral("target")), std::nullopt);
        defaults.set(key, number);
        EXPECT_TRUE(defaults.flush());
        EXPECT_EQ(onDisk(), (QJsonObject{{key, number}}));
        ++number;
        EXPECT_EQ(log.lines.size(), number);
    }
    for (int i = 0; i < number; ++i)
        EXPECT_EQ(bytes(QStringLiteral(".broken-%1").arg(i + 1)), broken[i]);
}

TEST_F(JsonUserDefaultsTest, WhatIsNoFileStepsAside)
{
    // Opening a pipe would wait for a writer for ever.
    for (const bool isPipe : {false, true}) {
        QFile::remove(path);
        QDir().mkpath(isPipe ? QFileInfo(path).path() : path);
        if (isPipe) {
            ASSERT_EQ(mkfifo(path.toUtf8().constData(), 0600), 0);
        }
        JsonUserDefaults defaults(path, log);
        defaults.set(key, isPipe);
        EXPECT_TRUE(defaults.flush());
        EXPECT_EQ(onDisk(), (QJsonObject{{key, isPipe}}));
    }
}

TEST_F(JsonUserDefaultsTest, NumbersBeyondDoublesCostNothingElse)
{
    put(R"({"a": 1e400, "b": -1e999, "c": [1E+400], "text": "1e400", "key": 1e300})");
    JsonUserDefaults defaults(path, log);
    EXPECT_EQ(defaults.number(QStringLiteral("a")), std::nullopt);
    EXPECT_EQ(defaults.string(QStringLiteral("text")), QStringLiteral("1e400"));
    EXPECT_EQ(defaults.number(key), 1e300);
    EXPECT_TRUE(log.lines.isEmpty());
}

TEST_F(JsonUserDefaultsTest, EditsFromOutsideSurvive)
{
    put(R"({"mine": 1, "theirs": 1, "gone": 1})");
    JsonUserDefaults defaults(path, log);
    put(R"({"mine": 5, "theirs": 2, "new": 3})");
    defaults.set(QStringLiteral("mine"), 9);
    ASSERT_TRUE(defaults.flush());
    const QJsonObject expected{
        {QStringLiteral("mine"), 9}, {QStringLiteral("theirs"), 2}, {QStringLiteral("new"), 3}};
    EXPECT_EQ(onDisk(), expected);
    EXPECT_EQ(defaults.number(QStringLiteral("theirs")), 2);
    EXPECT_EQ(defaults.number(QStringLiteral("gone")), std::nullopt);

    put("{ half an edit");
    defaults.set(key, 1);
    ASSERT_TRUE(defaults.flush());
    EXPECT_EQ(onDisk().size(), 4) << "what is in memory is stored in full";
    EXPECT_EQ(bytes(QStringLiteral(".broken-1")), "{ half an edit");
    QFile::remove(path);
    defaults.set(key, 2);
    ASSERT_TRUE(defaults.flush());
    EXPECT_EQ(onDisk().size(), 4);
}

TEST_F(JsonUserDefaultsTest, ALinkStaysALink)
{
    put(R"({"a": 1})");
    const QString target = folder.filePath(QStringLiteral("dotfiles.json"));
    const QString middle = folder.filePath(QStringLiteral("middle.json"));
    ASSERT_TRUE(QFile::rename(path, target));
    ASSERT_TRUE(QFile::link(target, middle));
    ASSERT_TRUE(QFile::link(middle, path));
    JsonUserDefaults defaults(path, log);
    defaults.set(key, 1);
    ASSERT_TRUE(defaults.flush());
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_TRUE(QFileInfo(middle).isSymLink());
    EXPECT_EQ(onDisk().size(), 2);
}

TEST_F(JsonUserDefaultsTest, AFullDiskKeepsTheOldFileAndTheNewValues)
{
    put(R"({"a": 1})");
    JsonUserDefaults defaults(path, log);
    auto *const oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old = {};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit none = old;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_FSIZE, &none);
    for (int value : {1, 2}) {
        defaults.set(key, value);
        EXPECT_FALSE(defaults.flush());
    }
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(bytes(), R"({"a": 1})");
    EXPECT_EQ(defaults.number(key), 2);
    EXPECT_EQ(log.lines.size(), 1) << "said once";
    EXPECT_EQ(QDir(QFileInfo(path).path()).entryList(QDir::Files).size(), 1) << "no litter";
    defaults.set(QStringLiteral("other"), 3);
    EXPECT_TRUE(defaults.flush());
    EXPECT_EQ(onDisk().size(), 3);
}

} // namespace
} // namespace tovi
