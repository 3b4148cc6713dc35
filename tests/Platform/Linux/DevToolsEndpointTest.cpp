// SPDX-License-Identifier: MIT
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Linux/DevToolsEndpoint.h"

namespace tovi {
namespace {

constexpr qint64 pid = 4711;
const DevToolsEndpoint listening{40797, "/devtools/browser/332c-11"};

struct DevToolsEndpointTest : testing::Test
{
    QTemporaryDir directory;
    const QDir root{directory.path()};
    const DevToolsEndpoint::Places places{root.filePath(QStringLiteral("home")),
                                          root.filePath(QStringLiteral("config")),
                                          root.filePath(QStringLiteral("proc"))};

    QByteArray write(const QString &name, const QByteArray &content) const
    {
        const QString path = root.filePath(name);
        root.mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return QFile::encodeName(path);
    }
    /// "|" stands for the end of an argument, "@" for the directory.
    void setCommandLine(const QByteArray &line) const
    {
        write(QStringLiteral("proc/4711/cmdline"),
              QByteArray(line).replace('|', '\0').replace("@", directory.path().toLocal8Bit()));
    }
    /// A profile that a process holds since second 1000.
    void makeProfile(const QString &folder, const QByteArray &holder = "my-host-4711",
                     const QByteArray &port = "40797\n/devtools/browser/332c-11", int portTime = 1001) const
    {
        const QByteArray file = write(folder + QStringLiteral("/DevToolsActivePort"), port);
        const QString lock = root.filePath(folder + QStringLiteral("/SingletonLock"));
        QFile::remove(lock);
        EXPECT_EQ(::symlink(holder.constData(), QFile::encodeName(lock).constData()), 0);
        const auto setTime = [](const QByteArray &path, int seconds) {
            const timespec times[] = {{seconds, 5}, {seconds, 5}};
            EXPECT_EQ(::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW), 0);
        };
        setTime(file, portTime);
        setTime(QFile::encodeName(lock), 1000);
    }
    auto find() const { return DevToolsEndpoint::find(QStringLiteral("org.chromium.Chromium"), pid, places); }
};

TEST_F(DevToolsEndpointTest, ReadsTheCommandLine)
{
    const DevToolsEndpoint told{9222, {}, {pid}};
    const struct
    {
        QByteArray line;
        std::optional<DevToolsEndpoint> endpoint;
    } cases[] = {
        {"chromium|--user-data-dir=/elsewhere|--user-data-dir=@/my profile|", listening},
        {"chromium --remote-debugging-port=0 --user-data-dir=@/my profile --flag" +
             QByteArray(" x").repeated(100),
         listening},
        {"chromium --user-data-dir=my profile", listening},
        {"chromium|--remote-debugging-port=0", {}}, // uses its usual profile
        {"chromium --remote-debugging-port=9222 --user-data-dir=@/my profile", told},
        {"chromium|--remote-debugging-port=99999|--x--remote-debugging-port=9222|", {}},
        {"", {}},
    };
    makeProfile(QStringLiteral("my profile"));
    setCommandLine("");
    ASSERT_TRUE(QFile::link(directory.path(), root.filePath(QStringLiteral("proc/4711/cwd"))));
    for (const auto &one : cases) {
        setCommandLine(one.line);
        EXPECT_EQ(find(), one.endpoint) << one.line.left(80).constData();
    }
}

TEST_F(DevToolsEndpointTest, APortFileCountsOnlyForTheProcessThatWroteIt)
{
    const QByteArray port = "40797\n/devtools/browser/332c-11";
    const struct
    {
        const char *name;
        QByteArray holder, port;
        int portTime;
        bool isFound;
    } cases[] = {
        {"of a sandbox", "host-2", port, 1000, true},
        {"of another process", "my-host-4712", port, 1000, false},
        {"of an earlier run", "my-host-4711", port, 999, false},
        {"empty", "my-host-4711", "", 1000, false},
        {"more than a path", "my-host-4711", port + " HTTP/1.1\r\n", 1000, false},
    };
    setCommandLine("chromium");
    write(QStringLiteral("proc/4711/status"), "Name:\tchrome\nNSpid:\t4711\t2\nThreads:\t3\n");
    for (const auto &one : cases) {
        makeProfile(QStringLiteral("config/chromium"), one.holder, one.port, one.portTime);
        EXPECT_EQ(find(), one.isFound ? std::optional(listening) : std::nullopt) << one.name;
    }
}

} // namespace
} // namespace tovi
