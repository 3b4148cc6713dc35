// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QRectF>

#include "Platform/Subscription.h"

namespace tovi {

class ResultPanelController;
class ResultViewModel;

/// The open result panels, in the order they were shown; holds the only strong reference to each. Main
/// thread.
class ResultPanelManager
{
public:
    static ResultPanelManager &shared();

    /// Builds the window of the next panel, while there is nothing else to do. Kept for a while.
    void prepare();
    /// Shows a new panel, closing every unpinned one first. `near`: the selection, in points, origin
    /// bottom-left of the primary screen, y up; none places the panel by the pointer.
    void show(const std::shared_ptr<ResultViewModel> &model, std::optional<QRectF> near);
    void closeUnpinned();

private:
    std::vector<std::shared_ptr<ResultPanelController>> m_panels;
    std::shared_ptr<ResultPanelController> m_prepared;
    Subscription m_preparedEnd;
};

} // namespace tovi
