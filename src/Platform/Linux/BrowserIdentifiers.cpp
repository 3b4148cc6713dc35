// SPDX-License-Identifier: MIT
#include "Platform/Linux/BrowserIdentifiers.h"

#include <QHash>

namespace tovi {

QString browserIdentifier(const QString &desktopIdOrClass)
{
    // Distributions' packages, the vendors' own, Flatpaks and Snaps; where a vendor's channels differ between
    // systems, the nearest one.
    static const QHash<QString, QString> identifiers = [] {
        const struct
        {
            const char *name;
            const char *identifier;
        } table[] = {
            {"google-chrome", "com.google.Chrome"},
            {"google-chrome-stable", "com.google.Chrome"},
            {"com.google.chrome", "com.google.Chrome"},
            {"google-chrome-beta", "com.google.Chrome.beta"},
            {"com.google.chrome.beta", "com.google.Chrome.beta"},
            {"google-chrome-unstable", "com.google.Chrome.canary"},
            {"google-chrome-canary", "com.google.Chrome.canary"},
            {"com.google.chromedev", "com.google.Chrome.canary"},
            {"com.google.chrome.unstable", "com.google.Chrome.canary"},
            {"com.google.chrome.canary", "com.google.Chrome.canary"},
            {"microsoft-edge", "com.microsoft.edgemac"},
            {"microsoft-edge-stable", "com.microsoft.edgemac"},
            {"com.microsoft.edge", "com.microsoft.edgemac"},
            {"microsoft-edge-beta", "com.microsoft.edgemac.Beta"},
            {"com.microsoft.edge.beta", "com.microsoft.edgemac.Beta"},
            {"vivaldi", "com.vivaldi.Vivaldi"},
            {"vivaldi-stable", "com.vivaldi.Vivaldi"},
            {"com.vivaldi.vivaldi", "com.vivaldi.Vivaldi"},
            {"brave", "com.brave.Browser"},
            {"brave-browser", "com.brave.Browser"},
            {"brave_brave", "com.brave.Browser"},
            {"com.brave.browser", "com.brave.Browser"},
            {"brave-browser-beta", "com.brave.Browser.beta"},
            {"com.brave.browser.beta", "com.brave.Browser.beta"},
            {"chromium", "org.chromium.Chromium"},
            {"chromium-browser", "org.chromium.Chromium"},
            {"chromium_chromium", "org.chromium.Chromium"},
            {"org.chromium.chromium", "org.chromium.Chromium"},
            {"opera", "com.operasoftware.Opera"},
            {"opera_opera", "com.operasoftware.Opera"},
            {"com.opera.opera", "com.operasoftware.Opera"},
        };
        QHash<QString, QString> result;
        for (const auto &entry : table)
            result.insert(QString::fromLatin1(entry.name), QString::fromLatin1(entry.identifier));
        return result;
    }();
    return identifiers.value(desktopIdOrClass.toLower());
}

} // namespace tovi
