// SPDX-License-Identifier: MIT
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "Platform/Linux/XdgLoginItem.h"

namespace tovi {
namespace {

using Status = LoginItem::Status;

TEST(XdgLoginItem, FollowsTheFilesOfTheDesktop)
{
    const QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.filePath(QStringLiteral("config")).toUtf8());
    qputenv("XDG_DATA_HOME", folder.filePath(QStringLiteral("data")).toUtf8());
    qputenv("XDG_DATA_DIRS", folder.filePath(QStringLiteral("data")).toUtf8());
    const QString entry = folder.filePath(QStringLiteral("config/autostart/com.brevoll.tovi.desktop"));
    const QString installed = folder.filePath(QStringLiteral("data/applications/com.brevoll.tovi.desktop"));
    const auto write = [](const QString &path, const QByteArray &content) {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    XdgLoginItem item;
    EXPECT_EQ(item.status(), Status::NotFound);
    EXPECT_NE(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    write(installed, "[Desktop Entry]\nExec=/nonexistent/tovi\n");
    EXPECT_EQ(item.status(), Status::NotFound);

    write(installed,
          "# comment\n[Desktop Entry]\nName=Tovi\nExec=\"/bin/sh\" %U\n[Other]\nExec=/nonexistent\n");
    EXPECT_EQ(item.status(), Status::NotRegistered);
    EXPECT_EQ(item.registerItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::Enabled);
    for (const char *off : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
        write(entry, QByteArray("[Desktop Entry]\nExec=/bin/sh\n") + off + "\n");
        EXPECT_EQ(item.status(), Status::RequiresApproval) << off;
    }
    EXPECT_EQ(item.registerItem(), std::nullopt) << "the user asked for it again";
    EXPECT_EQ(item.status(), Status::Enabled);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_EQ(item.status(), Status::NotRegistered);

    QFile::remove(entry);
    QDir().rmdir(QFileInfo(entry).path());
    write(QFileInfo(entry).path(), "a file where the folder should be");
    EXPECT_NE(item.registerItem(), std::nullopt);
}

} // namespace
} // namespace tovi
