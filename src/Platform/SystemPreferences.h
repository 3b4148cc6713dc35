// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Names of pages of the desktop's own settings, for Workspace::open().
namespace tovi::SystemPreferences {

inline const QString accessibility =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
inline const QString screenCapture =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture");
inline const QString automation =
    QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_Automation");

} // namespace tovi::SystemPreferences
