// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What the build says about itself. Any thread.
namespace tovi::BundleInformation {

/// The program's name, the same in every language.
QString name();
/// The version that people read, "1.4.2".
QString shortVersion();
/// The number of this build, "37".
QString version();
/// Both of them, "1.4.2 (37)".
QString versionText();
/// Where the list of versions is; empty when nobody has told. TOVI_UPDATE_FEED_URL replaces it.
QString updateFeedURL();
/// Whether the program looks for newer versions itself; a package manager may do that.
bool looksForUpdates();
/// Whether there is a list of versions to look into, too: what commands that look need.
bool canLookForUpdates();

} // namespace tovi::BundleInformation
