// SPDX-License-Identifier: MIT
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "Platform/Linux/DesktopAppearance.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceNamespace = QStringLiteral("org.freedesktop.appearance");

class FakePortal final : public QDBusVirtualObject
{
public:
    QDBusVariant scheme{0U};

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &connection) override
    {
        const QVariant value = QVariant::fromValue(QDBusVariant(QVariant::fromValue(scheme)));
        return connection.send(call.createReply(value));
    }
};

TEST(DesktopAppearance, FollowsThePortalWhichMayComeLater)
{
    if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
        GTEST_SKIP() << "dbus-daemon is not installed";
    QTemporaryDir folder;
    QProcess daemon;
    daemon.setStandardErrorFile(QProcess::nullDevice());
    daemon.start(QStringLiteral("dbus-daemon"),
                 {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                  QStringLiteral("--address=unix:path=") + folder.filePath(QStringLiteral("bus"))});
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromUtf8(daemon.readLine().trimmed());
    const QString names[] = {QStringLiteral("portal"), QStringLiteral("program")};
    {
        QDBusConnection bus = QDBusConnection::connectToBus(address, names[0]);
        int changes = 0;
        DesktopAppearance appearance(QDBusConnection::connectToBus(address, names[1]), [&] { ++changes; });
        EXPECT_EQ(appearance.prefersDark(), std::nullopt);

        FakePortal portal;
        portal.scheme = QDBusVariant(1U);
        ASSERT_TRUE(bus.registerVirtualObject(path, &portal));
        ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark() == true; }));

        const auto announce = [&](const QString &key, uint value) {
            QDBusMessage signal =
                QDBusMessage::createSignal(path, interface, QStringLiteral("SettingChanged"));
            signal << appearanceNamespace << key << QVariant::fromValue(QDBusVariant(value));
            bus.send(signal);
        };
        announce(QStringLiteral("contrast"), 0);
        announce(QStringLiteral("color-scheme"), 2);
        EXPECT_TRUE(waitUntil([&] { return appearance.prefersDark() == false; }));
        announce(QStringLiteral("color-scheme"), 0);
        EXPECT_TRUE(waitUntil([&] { return !appearance.prefersDark(); }));
        EXPECT_EQ(changes, 3);
    }
    for (const QString &name : names)
        QDBusConnection::disconnectFromBus(name);
    daemon.kill();
    daemon.waitForFinished();
}

} // namespace
} // namespace tovi
