// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/Linux/DesktopOpener.h"
#include "Platform/SystemPreferences.h"

namespace tovi {
namespace {

TEST(DesktopOpener, KnowsThePagesOfTheDesktops)
{
    struct Case
    {
        QString url;
        const char *desktop;
        const char *command;
    };
    const Case cases[] = {
        {SystemPreferences::accessibility, "GNOME", "gnome-control-center universal-access"},
        {SystemPreferences::automation, "ubuntu:GNOME", "gnome-control-center applications"},
        {SystemPreferences::accessibility, "KDE", "systemsettings kcm_access"},
        {SystemPreferences::screenCapture, "KDE", "systemsettings"},
        {SystemPreferences::accessibility, "XFCE", ""},
        {SystemPreferences::accessibility, "", ""},
        {QStringLiteral("https://example.org/a b"), "KDE", ""},
        {QStringLiteral("https://example.org/a?b=c"), "", "xdg-open https://example.org/a?b=c"},
        {QStringLiteral("https:///nowhere"), "GNOME", ""},
        {QStringLiteral("file:///etc/passwd"), "GNOME", ""},
        {QStringLiteral("--help"), "GNOME", ""},
    };
    for (const Case &entry : cases) {
        EXPECT_EQ(
            DesktopOpener::command(entry.url, QString::fromLatin1(entry.desktop)).join(QLatin1Char(' ')),
            QLatin1String(entry.command))
            << qPrintable(entry.url) << ' ' << entry.desktop;
    }
}

} // namespace
} // namespace tovi
