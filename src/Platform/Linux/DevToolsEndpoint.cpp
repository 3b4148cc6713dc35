// SPDX-License-Identifier: MIT
#include "Platform/Linux/DevToolsEndpoint.h"

#include <algorithm>
#include <climits>
#include <tuple>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>

namespace tovi {

namespace {

constexpr qsizetype mostValues = 64;

/// Files of the process and of the profile have no size worth trusting.
QByteArray readFile(const QString &path, qint64 limit)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(limit) : QByteArray();
}

/// What a switch may have been given, the most likely value last. Chromium often joins its arguments by
/// spaces, and a space may belong to the value.
QList<QByteArray> switchValues(const QByteArray &commandLine, const QByteArray &name)
{
    QList<QByteArray> arguments = commandLine.split('\0');
    arguments.removeAll(QByteArray());
    QList<QByteArray> values;
    if (arguments.size() > 1) {
        for (const QByteArray &argument : std::as_const(arguments)) {
            if (argument.startsWith(name))
                values << argument.mid(name.size());
        }
        return values;
    }
    const QByteArray joined = arguments.value(0);
    const qsizetype start = joined.lastIndexOf(' ' + name);
    if (start < 0)
        return values;
    const QByteArray rest = joined.mid(start + 1 + name.size());
    for (qsizetype end = rest.indexOf(' '); end >= 0 && values.size() < mostValues - 1;
         end = rest.indexOf(' ', end + 1))
        values << rest.left(end);
    values << rest;
    return values;
}

QStringList profileFolders(const QString &browser, const DevToolsEndpoint::Places &places)
{
    // In the user's configuration, in a Flatpak's and in a Snap's. Where there is no package of a kind, there
    // is no folder, which costs nothing.
    static const struct
    {
        const char *browser, *folder, *flatpak, *snap;
    } table[] = {
        {"com.google.Chrome", "google-chrome", "com.google.Chrome", ""},
        {"com.google.Chrome.canary", "google-chrome-unstable", "com.google.ChromeDev", ""},
        {"com.google.Chrome.canary", "google-chrome-canary", "", ""},
        {"com.google.Chrome.beta", "google-chrome-beta", "", ""},
        {"com.microsoft.edgemac", "microsoft-edge", "com.microsoft.Edge", ""},
        {"com.microsoft.edgemac.Beta", "microsoft-edge-beta", "", ""},
        {"com.vivaldi.Vivaldi", "vivaldi", "com.vivaldi.Vivaldi", "vivaldi/current/.config"},
        {"com.brave.Browser", "BraveSoftware/Brave-Browser", "com.brave.Browser", "brave/current/.config"},
        {"com.brave.Browser.beta", "BraveSoftware/Brave-Browser-Beta", "", ""},
        {"org.chromium.Chromium", "chromium", "org.chromium.Chromium", "chromium/common"},
        {"com.operasoftware.Opera", "opera", "com.opera.Opera", "opera/current/.config"},
    };
    QStringList folders;
    for (const auto &entry : table) {
        if (browser != QLatin1String(entry.browser))
            continue;
        const QString folder = QLatin1Char('/') + QLatin1String(entry.folder);
        folders << places.configuration + folder << places.home + QStringLiteral("/.config") + folder;
        if (*entry.flatpak)
            folders << places.home + QStringLiteral("/.var/app/") + QLatin1String(entry.flatpak) +
                           QStringLiteral("/config") + folder;
        if (*entry.snap)
            folders << places.home + QStringLiteral("/snap/") + QLatin1String(entry.snap) + folder;
    }
    return folders;
}

/// The process and what it calls itself: a sandbox may count its processes on its own.
QList<qint64> namesOf(const QString &process, qint64 processIdentifier)
{
    QList<qint64> names{processIdentifier};
    const QByteArray status = readFile(process + QStringLiteral("/status"), 16 << 10);
    for (const QByteArray &line : status.split('\n')) {
        if (line.startsWith("NSpid:"))
            names << line.split('\t').last().toLongLong();
    }
    return names;
}

/// The port file of a profile that the process has open. The file stays behind when a browser ends, so it
/// counts only if it is younger than the profile's lock.
std::optional<DevToolsEndpoint> readProfile(const QString &folder, const QList<qint64> &processes)
{
    const QByteArray lockPath = QFile::encodeName(folder + QStringLiteral("/SingletonLock"));
    const QString filePath = folder + QStringLiteral("/DevToolsActivePort");
    char holder[PATH_MAX]; // host name, hyphen, process
    const ssize_t length = ::readlink(lockPath.constData(), holder, sizeof holder);
    if (length <= 0 || !processes.contains(QByteArray(holder, length).split('-').last().toLongLong()))
        return std::nullopt;
    struct stat lock, file;
    if (::lstat(lockPath.constData(), &lock) != 0 ||
        ::stat(QFile::encodeName(filePath).constData(), &file) != 0 || !S_ISREG(file.st_mode) ||
        std::tie(file.st_mtim.tv_sec, file.st_mtim.tv_nsec) <
            std::tie(lock.st_mtim.tv_sec, lock.st_mtim.tv_nsec))
        return std::nullopt;
    const QList<QByteArray> lines = readFile(filePath, 1024).split('\n');
    const DevToolsEndpoint endpoint{lines[0].trimmed().toUShort(), lines.value(1).trimmed()};
    const bool isPath =
        endpoint.path.startsWith("/devtools/browser") &&
        std::all_of(endpoint.path.cbegin(), endpoint.path.cend(), [](char c) { return c > ' ' && c <= '~'; });
    return endpoint.port != 0 && isPath ? std::optional(endpoint) : std::nullopt;
}

} // namespace

DevToolsEndpoint::Places DevToolsEndpoint::Places::standard()
{
    return {.home = QDir::homePath(),
            .configuration = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)};
}

std::optional<DevToolsEndpoint> DevToolsEndpoint::find(const QString &browser, qint64 processIdentifier,
                                                       const Places &places)
{
    QStringList folders = profileFolders(browser, places);
    const QString process = places.processes + QLatin1Char('/') + QString::number(processIdentifier);
    const QByteArray commandLine = readFile(process + QStringLiteral("/cmdline"), 64 << 10);
    if (folders.isEmpty() || commandLine.isEmpty())
        return std::nullopt;

    const QList<qint64> processes = namesOf(process, processIdentifier);
    const QList<QByteArray> ports = switchValues(commandLine, "--remote-debugging-port=");
    if (const quint16 port = ports.isEmpty() ? 0 : ports.last().split(' ').first().toUShort())
        return DevToolsEndpoint{port, {}, processes}; // a browser told its port writes no file

    const QList<QByteArray> given = switchValues(commandLine, "--user-data-dir=");
    if (!given.isEmpty()) {
        folders.clear();
        const QDir workingDirectory(QFile::symLinkTarget(process + QStringLiteral("/cwd")));
        for (const QByteArray &value : given)
            folders.prepend(workingDirectory.absoluteFilePath(QFile::decodeName(value)));
    }
    for (const QString &folder : std::as_const(folders)) {
        if (const auto endpoint = readProfile(folder, processes))
            return endpoint;
    }
    return std::nullopt;
}

} // namespace tovi
