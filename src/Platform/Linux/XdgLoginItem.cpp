// SPDX-License-Identifier: MIT
#include "Platform/Linux/XdgLoginItem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QStandardPaths>

#include "Platform/Linux/AtomicFile.h"

namespace tovi {

namespace {

const QString entryName = QStringLiteral("com.brevoll.tovi.desktop");
using Entry = QHash<QString, QString>;

QString autostartPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/") + entryName;
}

/// The main group of a desktop entry; none when there is no such file.
std::optional<Entry> readEntry(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    Entry entry;
    bool isMainGroup = false;
    const QStringList lines = QString::fromUtf8(file.read(64 * 1024)).split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith(u'['))
            isMainGroup = line.trimmed() == QLatin1String("[Desktop Entry]");
        else if (const auto equals = line.indexOf(u'='); isMainGroup && equals > 0 && !line.startsWith(u'#'))
            entry.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return entry;
}

bool isTrue(const Entry &entry, const char *key, bool fallback)
{
    const QString value = entry.value(QLatin1String(key));
    return value.isEmpty() ? fallback : value == QLatin1String("true");
}

bool hasProgram(const Entry &entry)
{
    const auto exists = [](const QString &program) {
        return !program.isEmpty() && !QStandardPaths::findExecutable(program).isEmpty();
    };
    if (const QString tryExec = entry.value(QStringLiteral("TryExec"));
        !tryExec.isEmpty() && !exists(tryExec))
        return false;
    return exists(QProcess::splitCommand(entry.value(QStringLiteral("Exec"))).value(0));
}

/// The program's entry among the installed applications.
std::optional<Entry> installedEntry()
{
    const QString path = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, entryName);
    const auto entry = readEntry(path);
    return entry && hasProgram(*entry) ? entry : std::nullopt;
}

} // namespace

LoginItem::Status XdgLoginItem::status() const
{
    const auto entry = readEntry(autostartPath());
    if (!entry || !hasProgram(*entry))
        return installedEntry() ? Status::NotRegistered : Status::NotFound;
    const bool isOff = isTrue(*entry, "Hidden", false) || !isTrue(*entry, "X-GNOME-Autostart-enabled", true);
    return isOff ? Status::RequiresApproval : Status::Enabled;
}

std::optional<QString> XdgLoginItem::registerItem()
{
    const auto installed = installedEntry();
    if (!installed)
        return QStringLiteral("%1 is not installed").arg(entryName);
    QString text = QStringLiteral("[Desktop Entry]\nType=Application\n");
    for (const char *key : {"Name", "Icon", "TryExec", "Exec"}) {
        if (const QString value = installed->value(QLatin1String(key)); !value.isEmpty())
            text += QStringLiteral("%1=%2\n").arg(QLatin1String(key), value);
    }
    text += QStringLiteral("X-GNOME-Autostart-enabled=true\n");

    const QString path = autostartPath();
    QDir().mkpath(QFileInfo(path).path());
    return AtomicFile::write(path, text.toUtf8(),
                             QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                                 QFileDevice::ReadOther);
}

std::optional<QString> XdgLoginItem::unregisterItem()
{
    QFile file(autostartPath());
    if (!file.exists() || file.remove())
        return std::nullopt;
    return file.errorString();
}

} // namespace tovi
