// SPDX-License-Identifier: MIT
#include "Capture/AppleScriptCapturer.h"

#include <QSet>

#include "Platform/Platform.h"
#include "Platform/ScriptRunner.h"
#include "Platform/Workspace.h"
#include "Text.h"

namespace tovi::AppleScriptCapturer {

namespace {

const QSet<QString> &safariBundleIDs()
{
    static const QSet<QString> identifiers{
        QStringLiteral("com.apple.Safari"),
        QStringLiteral("com.apple.SafariTechnologyPreview"),
    };
    return identifiers;
}

const QSet<QString> &chromiumBundleIDs()
{
    static const QSet<QString> identifiers{
        QStringLiteral("com.google.Chrome"),          QStringLiteral("com.google.Chrome.canary"),
        QStringLiteral("com.google.Chrome.beta"),     QStringLiteral("com.microsoft.edgemac"),
        QStringLiteral("com.microsoft.edgemac.Beta"), QStringLiteral("com.vivaldi.Vivaldi"),
        QStringLiteral("com.brave.Browser"),          QStringLiteral("com.brave.Browser.beta"),
        QStringLiteral("org.chromium.Chromium"),      QStringLiteral("com.operasoftware.Opera"),
        QStringLiteral("com.pushbullet.Browser"),
    };
    return identifiers;
}

const QLatin1String
    safariQuestion(R"--(do JavaScript "window.getSelection().toString()" in front document)--");
const QLatin1String chromiumQuestion(
    R"--(execute front window's active tab javascript "window.getSelection().toString()")--");

QString script(const QString &bundleID, QLatin1String question)
{
    return QStringLiteral(R"--(tell application id "%1"
    if (count of windows) is 0 then return ""
    try
        return (%2)
    on error
        return ""
    end try
end tell)--")
        .arg(bundleID, question);
}

std::optional<QString> run(const QString &source)
{
    const auto text = Platform::current().scriptRunner().run(source);
    return text && !isBlank(*text) ? text : std::nullopt;
}

} // namespace

std::optional<QString> selectedText()
{
    const auto frontmost = Platform::current().workspace().frontmostApplication();
    if (!frontmost)
        return {};
    const QString &bundleID = frontmost->bundleIdentifier;
    if (safariBundleIDs().contains(bundleID))
        return run(script(bundleID, safariQuestion));
    if (chromiumBundleIDs().contains(bundleID))
        return run(script(bundleID, chromiumQuestion));
    return {};
}

} // namespace tovi::AppleScriptCapturer
