// SPDX-License-Identifier: MIT
#include "UI/ResultPanelController.h"

#include <utility>

#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Settings.h"
#include "Speech.h"
#include "UI/PanelPlacement.h"
#include "UI/ResultView.h"
#include "UI/ResultViewModel.h"

namespace tovi {

namespace {

Workspace &workspace()
{
    return Platform::current().workspace();
}

QRectF visibleFrame(QPointF containing)
{
    return PanelPlacement::visibleFrame(containing, workspace().screens(), workspace().mainScreen());
}

double panelWidth()
{
    return PanelPlacement::panelWidth(Settings::shared().resultPanelWidth);
}

} // namespace

ResultPanelController::~ResultPanelController()
{
    if (m_panel)
        close();
}

void ResultPanelController::show(std::shared_ptr<ResultViewModel> model, std::optional<QRectF> near)
{
    close();
    m_model = std::move(model);
    auto view = std::make_unique<ResultView>(m_model);
    m_view = view.get();
    m_panel = Platform::current().panelHost().makePanel(std::move(view));
    m_panel->setFrame(QRectF(0, 0, panelWidth(), 140));

    const auto weak = weak_from_this();
    m_model->onClose = [weak] {
        if (const auto self = weak.lock())
            self->close();
    };
    m_model->onResize = [weak] {
        if (const auto self = weak.lock())
            self->resize();
    };
    m_model->onTogglePin = [weak](bool isPinned) {
        if (const auto self = weak.lock())
            self->setPinned(isPinned);
    };
    m_panel->onEscape = m_model->onClose;

    resize();
    position(near);
    m_panel->orderFrontRegardless();
    m_panel->makeKey();
    m_view->focusContent();
}

void ResultPanelController::close()
{
    auto panel = std::exchange(m_panel, nullptr);
    Speech::shared().stop();
    if (const auto model = std::exchange(m_model, nullptr)) {
        if (const auto dismissed = std::exchange(model->onDismiss, nullptr))
            dismissed();
    }
    m_isPinned = false;
    if (!panel)
        return;
    panel->onEscape = nullptr;
    panel->orderOut();
    panel.reset();
    if (const auto closed = std::exchange(onClosed, nullptr))
        closed();
}

void ResultPanelController::setPinned(bool isPinned)
{
    m_isPinned = isPinned;
}

void ResultPanelController::resize()
{
    if (!m_panel || !m_model || !m_view)
        return;
    const double width = panelWidth();
    const QRectF old = m_panel->frame();
    const double height = PanelPlacement::panelHeight(m_view->contentHeight(width), workspace().mainScreen());
    m_panel->setFrame(QRectF(old.x(), old.y() - (height - old.height()), width, height));
    clampOnScreen();
}

void ResultPanelController::position(std::optional<QRectF> near)
{
    const QSizeF size = m_panel->frame().size();
    const auto mouse = workspace().mouseLocation();
    QPointF origin;
    if (Settings::shared().windowPosition.get() == WindowPosition::center || (!near && !mouse)) {
        const QPointF anywhere(-1e9, -1e9);
        origin = PanelPlacement::originCentered(size, visibleFrame(mouse.value_or(anywhere)));
    } else {
        const QRectF anchor = near ? *near : QRectF(mouse->x() - 4, mouse->y() - 4, 8, 8);
        origin = PanelPlacement::originNear(anchor, size, visibleFrame(anchor.center()));
    }
    m_panel->setFrame(QRectF(origin, size));
}

void ResultPanelController::clampOnScreen()
{
    const QRectF frame = m_panel->frame();
    const QPointF origin = PanelPlacement::clampedOrigin(frame, visibleFrame(frame.center()));
    if (origin != frame.topLeft())
        m_panel->setFrame(QRectF(origin, frame.size()));
}

} // namespace tovi
