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

const QString chromium = QStringLiteral("org.chromium.Chromium");
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
    void setCommandLine(const QByteArray &line) const
    {
        write(QStringLiteral("proc/4711/cmdline"),
              QByteArray(line).replace("@", directory.path().toLocal8Bit()));
    }
    /// A profile that a process holds since a time, with a port file of another, in seconds.
    void makeProfile(const QString &folder, const QByteArray &holder = "my-host-4711",
                     const QByteArray &port = "40797\n/devtools/browser/332c-11", int lockTime = 1000,
                     int portTime = 1001) const
    {
        const auto setTime = [](const QByteArray &path, int seconds) {
            const timespec times[] = {{seconds, 5}, {seconds, 5}};
            EXPECT_EQ(::utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW), 0);
        };
        setTime(write(folder + QStringLiteral("/DevToolsActivePort"), port), portTime);
        const QByteArray lock = QFile::encodeName(root.filePath(folder + QStringLiteral("/SingletonLock")));
        ::unlink(lock.constData());
        EXPECT_EQ(::symlink(holder.constData(), lock.constData()), 0);
        setTime(lock, lockTime);
    }
    auto find(const QString &browser = chromium) const
    {
        return DevToolsEndpoint::find(browser, pid, places);
    }
};

TEST_F(DevToolsEndpointTest, LooksInTheProfilesOfEachBrowser)
{
    setCommandLine(QByteArray("/usr/lib/browser\0--remote-debugging-port=0", 43));
    const struct
    {
        const char *browser, *folder;
    } cases[] = {
        {"org.chromium.Chromium", "config/chromium"},
        {"org.chromium.Chromium", "home/.config/chromium"},
        {"org.chromium.Chromium", "home/snap/chromium/common/chromium"},
        {"org.chromium.Chromium", "home/.var/app/org.chromium.Chromium/config/chromium"},
        {"com.google.Chrome", "config/google-chrome"},
        {"com.google.Chrome.beta", "config/google-chrome-beta"},
        {"com.google.Chrome.canary", "config/google-chrome-unstable"},
        {"com.microsoft.edgemac", "home/.var/app/com.microsoft.Edge/config/microsoft-edge"},
        {"com.microsoft.edgemac.Beta", "config/microsoft-edge-beta"},
        {"com.vivaldi.Vivaldi", "config/vivaldi"},
        {"com.brave.Browser", "home/snap/brave/current/.config/BraveSoftware/Brave-Browser"},
        {"com.brave.Browser.beta", "config/BraveSoftware/Brave-Browser-Beta"},
        {"com.operasoftware.Opera", "home/snap/opera/current/.config/opera"},
    };
    for (const auto &one : cases) {
        const QString folder = QString::fromLatin1(one.folder);
        makeProfile(folder);
        EXPECT_EQ(find(QString::fromLatin1(one.browser)), listening) << one.folder;
        EXPECT_FALSE(find(QStringLiteral("firefox-esr")));
        QDir(root.filePath(folder)).removeRecursively();
        EXPECT_FALSE(find(QString::fromLatin1(one.browser))) << one.folder;
    }
}

TEST_F(DevToolsEndpointTest, ReadsTheCommandLine)
{
    const auto separated = [](QByteArray line) { return line.replace('|', '\0'); };
    const struct
    {
        QByteArray line;
        std::optional<DevToolsEndpoint> endpoint;
    } cases[] = {
        {separated("chromium|--user-data-dir=@/my profile|--remote-debugging-port=0|"), listening},
        {separated("chromium|--user-data-dir=/elsewhere|--user-data-dir=@/my profile|"), listening},
        {"chromium --remote-debugging-port=0 --user-data-dir=@/my profile --flag about:blank", listening},
        {"chromium --user-data-dir=@/my profile file:///a b", listening},
        {"chromium --user-data-dir=@/my profile", listening},
        {"chromium --user-data-dir=my profile", listening},
        {"chromium --user-data-dir=@/my", {}},
        {separated("chromium|--remote-debugging-port=0"), {}}, // uses its usual profile
        {separated("chromium|--remote-debugging-port=9222|"), DevToolsEndpoint{9222, {}, {4711}}},
        {"chromium --remote-debugging-port=9222 --user-data-dir=@/my profile",
         DevToolsEndpoint{9222, {}, {4711}}},
        {separated("chromium|--remote-debugging-port=99999|"), {}},
        {separated("chromium|--x--remote-debugging-port=9222|"), {}},
        {"", {}},
    };
    makeProfile(QStringLiteral("my profile"));
    root.mkpath(QStringLiteral("proc/4711"));
    ASSERT_EQ(::symlink(QFile::encodeName(directory.path()).constData(),
                        QFile::encodeName(root.filePath(QStringLiteral("proc/4711/cwd"))).constData()),
              0);
    for (const auto &one : cases) {
        setCommandLine(one.line);
        EXPECT_EQ(find(), one.endpoint) << one.line.constData();
    }
}

TEST_F(DevToolsEndpointTest, APortFileCountsOnlyForTheProcessThatWroteIt)
{
    const QByteArray port = "40797\n/devtools/browser/332c-11";
    const struct
    {
        const char *name;
        QByteArray holder, port;
        int lockTime, portTime;
        bool isFound;
    } cases[] = {
        {"its own", "my-host-4711", port + "\n", 1000, 1000, true},
        {"of a sandbox", "host-2", port, 1000, 1001, true},
        {"of another process", "my-host-4712", port, 1000, 1001, false},
        {"of an earlier run", "my-host-4711", port, 1000, 999, false},
        {"empty", "my-host-4711", "", 1000, 1001, false},
        {"no path", "my-host-4711", "40797\n", 1000, 1001, false},
        {"no port", "my-host-4711", "0\n/devtools/browser/1", 1000, 1001, false},
        {"more than a path", "my-host-4711", "40797\n/devtools/browser/1 HTTP/1.1\r\n", 1000, 1001, false},
        {"another path", "my-host-4711", "40797\n/elsewhere", 1000, 1001, false},
    };
    setCommandLine("chromium");
    write(QStringLiteral("proc/4711/status"), "Name:\tchrome\nNSpid:\t4711\t2\nThreads:\t3\n");
    for (const auto &one : cases) {
        makeProfile(QStringLiteral("config/chromium"), one.holder, one.port, one.lockTime, one.portTime);
        EXPECT_EQ(find(), one.isFound ? std::optional(listening) : std::nullopt) << one.name;
    }
}

} // namespace
} // namespace tovi
