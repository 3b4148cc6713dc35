// SPDX-License-Identifier: MIT
#include <csignal>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Platform/Linux/LinuxSecretStore.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using Status = SecretStore::Status;

const QString service = QStringLiteral("com.brevoll.tovi");
const QString a = QStringLiteral("provider-A-api-key");
const QString b = QStringLiteral("provider-B-api-key");
const QString collection = QStringLiteral("/org/freedesktop/secrets/collection/login");
const QString busName = QStringLiteral("org.freedesktop.secrets");

/// A session bus of the test's own that starts nothing by itself, and a real keyring on it.
struct SecretStoreTest : testing::Test
{
    TestPlatform platform;
    QTemporaryDir folder;
    QString file = folder.filePath(QStringLiteral("tovi/keys.json"));
    QProcess bus;
    QProcess keyring;
    QByteArray oldAddress = qgetenv("DBUS_SESSION_BUS_ADDRESS");

    void SetUp() override
    {
        for (const char *program : {"dbus-daemon", "gnome-keyring-daemon"}) {
            if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty())
                GTEST_SKIP() << program << " is not installed";
        }
        QFile config(folder.filePath(QStringLiteral("bus.conf")));
        ASSERT_TRUE(config.open(QIODevice::WriteOnly));
        config.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                     "<policy context='default'><allow send_destination='*' eavesdrop='true'/>"
                     "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>");
        config.close();
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--config-file=") + config.fileName(), QStringLiteral("--print-address"),
                   QStringLiteral("--nofork")});
        ASSERT_TRUE(bus.waitForReadyRead());
        const QByteArray address = bus.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        QDBusConnection::connectToBus(QString::fromUtf8(address), busName);
    }
    void TearDown() override
    {
        stopKeyring();
        QDBusConnection::disconnectFromBus(busName);
        qputenv("DBUS_SESSION_BUS_ADDRESS", oldAddress);
        bus.kill();
        bus.waitForFinished();
    }

    void startKeyring()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
            const QString path = folder.filePath(QLatin1String(name));
            QDir().mkdir(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
            environment.insert(QLatin1String(name), path);
        }
        keyring.setProcessEnvironment(environment);
        keyring.start(QStringLiteral("gnome-keyring-daemon"),
                      {QStringLiteral("--foreground"), QStringLiteral("--unlock"),
                       QStringLiteral("--components=secrets")});
        keyring.write("password");
        keyring.closeWriteChannel();
        ASSERT_TRUE(waitUntil([] {
            const auto reply =
                call(collection, "org.freedesktop.DBus.Properties", "Get",
                     {QStringLiteral("org.freedesktop.Secret.Collection"), QStringLiteral("Locked")});
            return !reply.value(0, QVariant::fromValue(QDBusVariant(true)))
                        .value<QDBusVariant>()
                        .variant()
                        .toBool();
        })) << "it takes its name before it unlocks";
    }
    void stopKeyring()
    {
        keyring.kill();
        keyring.waitForFinished();
    }
    void lockKeyring()
    {
        call(QStringLiteral("/org/freedesktop/secrets"), "org.freedesktop.Secret.Service", "Lock",
             {QVariant::fromValue(QList{QDBusObjectPath(collection)})});
    }
    static QVariantList call(const QString &path, const char *interface, const char *method,
                             const QVariantList &arguments)
    {
        auto message =
            QDBusMessage::createMethodCall(busName, path, QLatin1String(interface), QLatin1String(method));
        message.setArguments(arguments);
        const auto reply = QDBusConnection(busName).call(message);
        return reply.type() == QDBusMessage::ReplyMessage ? reply.arguments() : QVariantList();
    }
};

void expectItem(SecretStore &store, const QString &account, Status status, const QByteArray &data = {})
{
    const auto item = store.find(service, account);
    EXPECT_EQ(item.status, status) << account.toStdString();
    EXPECT_EQ(item.data, data);
}

TEST_F(SecretStoreTest, KeepsSecretsInTheService)
{
    startKeyring();
    LinuxSecretStore store(file, platform.systemLog());
    expectItem(store, a, Status::NotFound);
    EXPECT_TRUE(store.add(service, a, "one"));
    EXPECT_TRUE(store.add(service, a, "zwö"));
    EXPECT_TRUE(store.add(service, b, " "));
    LinuxSecretStore again(file, platform.systemLog());
    expectItem(again, a, Status::Found, "zwö");
    EXPECT_TRUE(again.remove(service, a));
    EXPECT_TRUE(again.remove(service, a));
    expectItem(store, a, Status::NotFound);
    expectItem(store, b, Status::Found, " ");
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(platform.systemLog().lines.join(u'\n'), QString());
}

TEST_F(SecretStoreTest, ALockedKeyringIsNotEmptyAndTakesOverLater)
{
    startKeyring();
    LinuxSecretStore store(file, platform.systemLog());
    ASSERT_TRUE(store.add(service, a, "first"));
    lockKeyring();
    expectItem(store, a, Status::Unavailable);
    expectItem(store, b, Status::Unavailable);
    EXPECT_TRUE(store.add(service, b, "typed while locked"));
    expectItem(store, b, Status::Found, "typed while locked");
    EXPECT_TRUE(store.remove(service, a));
    expectItem(store, a, Status::NotFound);
    struct stat info = {};
    ASSERT_EQ(stat(file.toUtf8().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
    ASSERT_EQ(platform.systemLog().lines.size(), 1);
    EXPECT_FALSE(platform.systemLog().lines.first().contains(QStringLiteral("typed")));

    stopKeyring();
    startKeyring();
    expectItem(store, b, Status::Found, "typed while locked");
    EXPECT_FALSE(QFile::exists(file)) << "moved over";
    LibsecretStore direct;
    expectItem(direct, b, Status::Found, "typed while locked");
    expectItem(direct, a, Status::NotFound);
}

TEST_F(SecretStoreTest, WithoutAServiceTheFileServes)
{
    for (const bool hasBus : {true, false}) {
        if (!hasBus)
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        LinuxSecretStore store(file, platform.systemLog());
        expectItem(store, a, Status::Unavailable);
        EXPECT_TRUE(store.add(service, a, "key"));
        LinuxSecretStore again(file, platform.systemLog());
        expectItem(again, a, Status::Found, "key");
        EXPECT_TRUE(again.remove(service, a));
        expectItem(store, a, Status::NotFound);
        QFile::remove(file);
    }
}

TEST_F(SecretStoreTest, AServiceThatHangsIsWaitedForOnce)
{
    startKeyring();
    LinuxSecretStore store(file, platform.systemLog());
    ASSERT_TRUE(store.add(service, a, "kept"));
    const auto pid = static_cast<pid_t>(keyring.processId());
    kill(pid, SIGSTOP);
    QElapsedTimer elapsed;
    elapsed.start();
    expectItem(store, a, Status::Unavailable);
    EXPECT_TRUE(store.add(service, b, "waiting"));
    for (int i = 0; i < 20; ++i)
        expectItem(store, a, Status::Unavailable);
    EXPECT_LT(elapsed.elapsed(), 30'000);
    kill(pid, SIGCONT);
    platform.clock().advance(std::chrono::minutes(1));
    expectItem(store, a, Status::Found, "kept");
    expectItem(store, b, Status::Found, "waiting");
    EXPECT_FALSE(QFile::exists(file));
}

} // namespace
} // namespace tovi
