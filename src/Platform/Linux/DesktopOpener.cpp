// SPDX-License-Identifier: MIT
#include "Platform/Linux/DesktopOpener.h"

#include <QProcess>
#include <QUrl>

#include "Platform/Linux/OwnEnvironment.h"
#include "Platform/SystemPreferences.h"

namespace tovi::DesktopOpener {

namespace {

struct SettingsPage
{
    const QString &url;
    const char *gnome; ///< a panel of its control center
    const char *kde;   ///< a module of its system settings
};

/// Neither desktop has pages for what X11 allows every program anyway, so these are the nearest ones.
const SettingsPage pages[] = {
    {SystemPreferences::accessibility, "universal-access", "kcm_access"},
    {SystemPreferences::screenCapture, "applications", nullptr},
    {SystemPreferences::automation, "applications", nullptr},
};

} // namespace

QStringList command(const QString &url, const QString &currentDesktop)
{
    const QUrl parsed(url, QUrl::StrictMode);
    if (parsed.scheme() == QLatin1String("https") || parsed.scheme() == QLatin1String("http"))
        return parsed.isValid() && !parsed.host().isEmpty()
                   ? QStringList{QStringLiteral("xdg-open"), parsed.toString(QUrl::FullyEncoded)}
                   : QStringList();
    const QStringList desktops = currentDesktop.split(QLatin1Char(':'));
    for (const SettingsPage &page : pages) {
        if (page.url != url)
            continue;
        if (desktops.contains(QLatin1String("GNOME"), Qt::CaseInsensitive))
            return {QStringLiteral("gnome-control-center"), QString::fromLatin1(page.gnome)};
        if (desktops.contains(QLatin1String("KDE"), Qt::CaseInsensitive)) {
            QStringList command{QStringLiteral("systemsettings")};
            if (page.kde)
                command << QString::fromLatin1(page.kde);
            return command;
        }
    }
    return {};
}

void open(const QString &url)
{
    const QStringList words = command(url, qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (words.isEmpty())
        return;
    QProcess program;
    program.setProgram(words.first());
    program.setArguments(words.mid(1));
    program.setProcessEnvironment(OwnEnvironment::forOtherPrograms());
    program.startDetached();
}

} // namespace tovi::DesktopOpener
