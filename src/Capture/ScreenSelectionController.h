// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QRectF>

namespace tovi {

/// Lets the user drag a rectangle over the screen. Main thread.
class ScreenSelectionController
{
public:
    /// The dragged rectangle (points, origin bottom-left of the primary screen, y up), none when cancelled.
    using Completion = std::function<void(std::optional<QRectF>)>;

    static ScreenSelectionController &shared();

    void begin(const Completion &completion);
};

} // namespace tovi
