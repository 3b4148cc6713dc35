// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

#include "Platform/Keyboard.h"

namespace tovi {

struct RunningApplication
{
    QString localizedName;    ///< may be empty
    QString bundleIdentifier; ///< a known browser's identifier, else the desktop entry's id; may be empty
    qint64 processIdentifier = 0;
    /// What makes C the copy key there. Terminal emulators have their own, for command alone interrupts what
    /// runs in them; none where no key copies.
    std::optional<quint32> copyModifiers = ModifierFlag::command;
    bool operator==(const RunningApplication &) const = default;
};

/// One display. Rectangles in points, origin bottom-left of the primary screen, y up.
struct Screen
{
    QRectF frame;
    QRectF visibleFrame; ///< without desktop panels
    double backingScaleFactor = 1.0;
    quint32 displayNumber = 0;
    bool operator==(const Screen &) const = default;
};

/// The desktop around the program. Geometry in points, origin bottom-left of the primary screen, y up.
class Workspace
{
public:
    virtual ~Workspace() = default;

    /// The last active application, panels of this program not counted; none when nothing is active. Any
    /// thread; asks only the display server.
    virtual std::optional<RunningApplication> frontmostApplication() = 0;
    /// Its name; none where there is no name or no application. Any thread.
    std::optional<QString> frontmostName()
    {
        const auto frontmost = frontmostApplication();
        if (!frontmost || frontmost->localizedName.isEmpty())
            return std::nullopt;
        return frontmost->localizedName;
    }
    /// The primary screen first. Main thread.
    virtual QList<Screen> screens() = 0;
    /// The screen of the active window, else the pointer's. Main thread.
    virtual std::optional<Screen> mainScreen() = 0;
    /// None where the desktop does not tell. Main thread.
    virtual std::optional<QPointF> mouseLocation() = 0;

    /// Opens a web page, or a page of the desktop's own settings by its name in SystemPreferences.h, in the
    /// application for it. Returns at once; what nobody can open is ignored. Main thread.
    virtual void open(const QString &url) = 0;
};

} // namespace tovi
