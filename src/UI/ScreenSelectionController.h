// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <QObject>
#include <QRectF>

#include "Platform/Subscription.h"

namespace tovi {

class Panel;

/// Lets the user drag a rectangle over the screen. Main thread.
class ScreenSelectionController final : public QObject
{
    Q_OBJECT

public:
    /// The dragged rectangle (points, origin bottom-left of the primary screen, y up), none when cancelled.
    /// Comes once, a moment after the overlays have gone.
    using Completion = std::function<void(std::optional<QRectF>)>;

    static ScreenSelectionController &shared();

    ScreenSelectionController();
    ~ScreenSelectionController() override;

    /// Ends a selection under way without an answer. Nothing happens when there is no screen.
    void begin(const Completion &completion);
    /// Ends a selection under way; its answer is none.
    void cancel() { finish(std::nullopt); }

private:
    /// The user starts over on the displays that there are now.
    void screensChanged();
    void finish(std::optional<QRectF> rect);
    void tearDown();

    std::vector<std::unique_ptr<Panel>> m_windows; ///< one for each display
    Subscription m_eventMonitor;                   ///< of keys
    Completion m_completion;
    bool m_hasPushedCursor = false;
    bool m_isLayoutPending = false;
};

} // namespace tovi
