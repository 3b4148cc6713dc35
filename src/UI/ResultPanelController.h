// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QPointer>
#include <QRectF>

#include "Platform/Clock.h"
#include "Platform/PanelHost.h"
#include "Platform/Subscription.h"
#include "Platform/Workspace.h"

namespace tovi {

class ResultView;
class ResultViewModel;

/// One result panel: builds, places, sizes and closes the window around a model. Main thread; rectangles in
/// points, origin bottom-left of the primary screen, y up.
class ResultPanelController : public std::enable_shared_from_this<ResultPanelController>
{
public:
    ~ResultPanelController();

    /// Builds the window, so that showing it is quick.
    void prepare();
    /// `near` is the selection on the screen, where known.
    void show(std::shared_ptr<ResultViewModel> model, std::optional<QRectF> near);
    /// Idempotent.
    void close();
    /// Fits the height to the content, keeping the top edge.
    void resize();

    bool isPinned() const { return m_isPinned; }

    /// Called once after the panel closed.
    std::function<void()> onClosed;

private:
    void setPinned(bool isPinned);
    void installOutsideMonitor();
    void enableDragging();
    double contentHeight(double width) const;
    QSizeF wantedSize(const std::optional<Screen> &mainScreen) const;
    QPointF origin(const std::optional<QRectF> &near, QSizeF size,
                   const std::optional<Screen> &mainScreen) const;

    std::unique_ptr<Panel> m_panel;
    QPointer<ResultView> m_view;
    std::shared_ptr<ResultViewModel> m_model;
    Subscription m_outsideMonitor;
    Subscription m_monitorDelay;
    bool m_isPinned = false;
};

} // namespace tovi
