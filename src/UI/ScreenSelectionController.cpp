// SPDX-License-Identifier: MIT
#include "UI/ScreenSelectionController.h"

#include <QGuiApplication>
#include <QPointer>
#include <QScreen>

#include "Platform/Clock.h"
#include "Platform/DispatchQueue.h"
#include "Platform/EventMonitors.h"
#include "Platform/PanelHost.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "UI/SelectionView.h"

namespace tovi {

namespace {

constexpr quint32 keyCodeEscape = 53;
// The screen is as it was before anybody takes a picture of it.
constexpr auto completionDelay = std::chrono::milliseconds(80);

} // namespace

ScreenSelectionController &ScreenSelectionController::shared()
{
    return Platform::current().shared<ScreenSelectionController>();
}

ScreenSelectionController::ScreenSelectionController()
{
    // An overlay of a display that went, or moved, would cover something else.
    const auto changed = [this] { screensChanged(); };
    connect(qGuiApp, &QGuiApplication::screenAdded, this, changed);
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, changed);
    const auto watch = [this, changed](const QScreen *screen) {
        connect(screen, &QScreen::geometryChanged, this, changed);
    };
    for (const QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
}

ScreenSelectionController::~ScreenSelectionController()
{
    tearDown();
}

void ScreenSelectionController::begin(const Completion &completion)
{
    tearDown();
    m_completion = nullptr;
    Platform &platform = Platform::current();
    const auto screens = platform.workspace().screens();
    if (screens.isEmpty())
        return;
    m_completion = completion;
    if (!std::exchange(m_hasPushedCursor, true))
        QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    const QPointer self(this);
    for (const Screen &screen : screens) {
        auto view = std::make_unique<SelectionView>();
        view->onSelect = [self, origin = screen.frame.topLeft()](const QRectF &rect) {
            if (self)
                self->finish(rect.translated(origin));
        };
        view->onCancel = [self] {
            if (self)
                self->finish(std::nullopt);
        };
        auto window = platform.panelHost().makeOverlay(std::move(view));
        window->setFrame(screen.frame);
        window->orderFrontRegardless();
        m_windows.push_back(std::move(window));
    }
    m_eventMonitor = platform.eventMonitors().addLocalKeyDownMonitor([self](const KeyEvent &event) {
        if (!self || event.keyCode != keyCodeEscape)
            return false;
        self->finish(std::nullopt);
        return true;
    });
    m_windows.front()->makeKey();
}

void ScreenSelectionController::screensChanged()
{
    if (m_windows.empty() || std::exchange(m_isLayoutPending, true))
        return;
    // One change of the displays is told in several parts.
    asyncOnMain([self = QPointer(this)] {
        if (!self || !std::exchange(self->m_isLayoutPending, false) || self->m_windows.empty())
            return;
        if (Platform::current().workspace().screens().isEmpty())
            self->cancel();
        else
            self->begin(Completion(self->m_completion));
    });
}

void ScreenSelectionController::finish(std::optional<QRectF> rect)
{
    if (!m_completion && m_windows.empty())
        return;
    const Completion completion = std::exchange(m_completion, nullptr);
    tearDown();
    if (completion)
        Platform::current().clock().afterDetached(completionDelay, [completion, rect] { completion(rect); });
}

void ScreenSelectionController::tearDown()
{
    m_eventMonitor.reset();
    m_windows.clear();
    if (std::exchange(m_hasPushedCursor, false))
        QGuiApplication::restoreOverrideCursor();
}

} // namespace tovi
