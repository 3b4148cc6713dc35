// SPDX-License-Identifier: MIT
#include "BundleInformation.h"

namespace tovi::BundleInformation {

QString name()
{
    return QStringLiteral("Tovi");
}

QString shortVersion()
{
    return QStringLiteral(TOVI_VERSION);
}

QString version()
{
    return QStringLiteral(TOVI_BUILD_NUMBER);
}

QString versionText()
{
    return shortVersion() + QStringLiteral(" (") + version() + QLatin1Char(')');
}

QString updateFeedURL()
{
    const QString replacement = qEnvironmentVariable("TOVI_UPDATE_FEED_URL");
    return replacement.isEmpty() ? QStringLiteral(TOVI_FEED) : replacement;
}

bool looksForUpdates()
{
    return TOVI_LOOKS_FOR_UPDATES;
}

bool canLookForUpdates()
{
    return looksForUpdates() && !updateFeedURL().isEmpty();
}

} // namespace tovi::BundleInformation
