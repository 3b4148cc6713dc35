// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

namespace tovi {

/// The window that has the user's attention, as the display server tells.
struct ActiveWindow
{
    qint64 processIdentifier = 0; ///< 0 where the window does not tell
    QString title;                ///< may be empty
    quint64 id = 0;               ///< means something only to the display server's own services
    bool hasKeyboard = true;      ///< false while one of our panels has it
    bool operator==(const ActiveWindow &) const = default;
};

/// What the services that read other applications need of the display server.
class ActiveWindowSource
{
public:
    virtual ~ActiveWindowSource() = default;
    /// None when nothing is active or the display server is gone. Any thread; asks only the display server.
    virtual std::optional<ActiveWindow> activeWindow() = 0;
};

} // namespace tovi
