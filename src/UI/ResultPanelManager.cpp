// SPDX-License-Identifier: MIT
#include "UI/ResultPanelManager.h"

#include <algorithm>
#include <utility>

#include "Platform/Clock.h"
#include "Platform/Platform.h"
#include "UI/ResultPanelController.h"

namespace tovi {

namespace {

// Longer than a capture takes that shows a panel at all.
constexpr auto preparedTime = std::chrono::seconds(10);

} // namespace

ResultPanelManager &ResultPanelManager::shared()
{
    return Platform::current().shared<ResultPanelManager>();
}

void ResultPanelManager::prepare()
{
    m_preparedEnd = Platform::current().clock().after(preparedTime, [this] { m_prepared.reset(); });
    if (m_prepared)
        return;
    m_prepared = std::make_shared<ResultPanelController>();
    m_prepared->prepare();
}

void ResultPanelManager::show(const std::shared_ptr<ResultViewModel> &model, std::optional<QRectF> near)
{
    closeUnpinned();
    prepare();
    const auto controller = std::exchange(m_prepared, nullptr);
    m_preparedEnd.reset();
    controller->onClosed = [this, weak = std::weak_ptr(controller)] {
        if (const auto closed = weak.lock())
            std::erase(m_panels, closed);
    };
    m_panels.push_back(controller);
    controller->show(model, near);
}

void ResultPanelManager::closeUnpinned()
{
    const auto firstUnpinned = std::stable_partition(m_panels.begin(), m_panels.end(),
                                                     [](const auto &panel) { return panel->isPinned(); });
    const std::vector<std::shared_ptr<ResultPanelController>> unpinned(firstUnpinned, m_panels.end());
    m_panels.erase(firstUnpinned, m_panels.end());
    for (const auto &panel : unpinned)
        panel->close();
}

} // namespace tovi
