// SPDX-License-Identifier: MIT
#include "UI/ResultPanelController.h"

#include <utility>

#include "Platform/EventMonitors.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Settings.h"
#include "Speech.h"
#include "UI/PanelPlacement.h"
#include "UI/ResultView.h"
#include "UI/ResultViewModel.h"
#include "UI/TextHeightCache.h"

namespace tovi {

namespace {

// The click that brought the panel up, or the one that follows it, is not meant to close it.
constexpr std::chrono::milliseconds outsideMonitorDelay{250};

Workspace &workspace()
{
    return Platform::current().workspace();
}

QRectF visibleFrame(QPointF containing, const std::optional<Screen> &mainScreen)
{
    return PanelPlacement::visibleFrame(containing, workspace().screens(), mainScreen);
}

double panelWidth()
{
    return PanelPlacement::panelWidth(Settings::shared().resultPanelWidth);
}

} // namespace

ResultPanelController::~ResultPanelController()
{
    if (m_model)
        close();
}

void ResultPanelController::prepare()
{
    if (m_panel)
        return;
    auto view = std::make_unique<ResultView>(std::make_shared<ResultViewModel>(CaptureResult{}));
    m_view = view.get();
    m_panel = Platform::current().panelHost().makePanel(std::move(view));
}

void ResultPanelController::show(std::shared_ptr<ResultViewModel> model, std::optional<QRectF> near)
{
    close();
    prepare();
    m_model = std::move(model);
    m_view->setModel(m_model);

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
    enableDragging();

    const auto mainScreen = workspace().mainScreen();
    const QSizeF size = wantedSize(mainScreen);
    m_panel->setFrame(QRectF(origin(near, size, mainScreen), size));
    m_panel->orderFrontRegardless();
    m_panel->makeKey();
    m_view->focusContent();
    m_monitorDelay =
        Platform::current().clock().after(outsideMonitorDelay, [this] { installOutsideMonitor(); });
}

void ResultPanelController::installOutsideMonitor()
{
    if (!m_panel || m_isPinned || m_outsideMonitor)
        return;
    m_outsideMonitor =
        Platform::current().eventMonitors().addGlobalMouseDownMonitor([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->close();
        });
}

void ResultPanelController::enableDragging()
{
    const auto start = std::make_shared<QPointF>();
    m_view->onPress = [this, start] { *start = m_panel->frame().topLeft(); };
    m_view->onDragged = [this, start](QPointF offset) {
        m_panel->setFrame(QRectF(*start + offset, m_panel->frame().size()));
    };
}

void ResultPanelController::close()
{
    m_monitorDelay.reset();
    m_outsideMonitor.reset();
    Speech::shared().stop();
    const auto model = std::exchange(m_model, nullptr);
    if (!model)
        return; // what is prepared stays
    auto panel = std::exchange(m_panel, nullptr);
    if (const auto dismissed = std::exchange(model->onDismiss, nullptr))
        dismissed();
    m_isPinned = false;
    panel->onEscape = nullptr;
    if (m_view) {
        m_view->onPress = nullptr;
        m_view->onDragged = nullptr;
    }
    panel->orderOut();
    panel.reset();
    if (const auto closed = std::exchange(onClosed, nullptr))
        closed();
}

void ResultPanelController::setPinned(bool isPinned)
{
    m_isPinned = isPinned;
    if (isPinned)
        m_outsideMonitor.reset();
    else
        installOutsideMonitor();
}

/// What the view will need, or more than any panel has.
double ResultPanelController::contentHeight(double width) const
{
    const double textWidth = width - 28;
    const double size = Settings::shared().resultFontSize;
    const QFont normal = ResultView::textFont(size);
    const QFont small = ResultView::textFont(std::max(size - 3, 10.0));
    const QFont smaller = ResultView::textFont(std::max(size - 4, 10.0));
    const auto measured = [textWidth](const QString &text, const QFont &font) {
        return TextHeightCache::height(text, font, textWidth, PanelPlacement::maximumHeight);
    };
    double h = measured(m_model->sourceText, normal) + 30 + 12 + 1 + 20;
    if (m_model->isLoading)
        h += m_model->ocrProgress.get() ? 88 : 26;
    if (!m_model->translatedText->isEmpty())
        h += measured(m_model->translatedText, normal) + 8;
    if (const auto &phonetic = m_model->phonetic.get(); phonetic && !phonetic->isEmpty())
        h += measured(*phonetic, small) + 4;
    for (const QString &meaning : m_model->meanings.get())
        h += measured(QStringLiteral("· ") + meaning, small) + 4;
    if (const auto &error = m_model->errorMessage.get())
        h += measured(*error, small) + 4;
    if (const auto &note = m_model->note.get())
        h += measured(*note, smaller) + 4;
    return h + 36;
}

QSizeF ResultPanelController::wantedSize(const std::optional<Screen> &mainScreen) const
{
    const double width = panelWidth();
    return {width, PanelPlacement::panelHeight(contentHeight(width), mainScreen)};
}

void ResultPanelController::resize()
{
    if (!m_model || !m_view)
        return;
    const auto mainScreen = workspace().mainScreen();
    const QRectF old = m_panel->frame();
    const QSizeF size = wantedSize(mainScreen);
    QRectF frame(QPointF(old.x(), old.bottom() - size.height()), size);
    frame.moveTopLeft(PanelPlacement::clampedOrigin(frame, visibleFrame(frame.center(), mainScreen)));
    m_panel->setFrame(frame);
}

QPointF ResultPanelController::origin(const std::optional<QRectF> &near, QSizeF size,
                                      const std::optional<Screen> &mainScreen) const
{
    const auto mouse = workspace().mouseLocation();
    if (Settings::shared().windowPosition.get() == WindowPosition::center || (!near && !mouse)) {
        const QPointF anywhere(-1e9, -1e9);
        return PanelPlacement::originCentered(size, visibleFrame(mouse.value_or(anywhere), mainScreen));
    }
    const QRectF anchor = near ? *near : QRectF(mouse->x() - 4, mouse->y() - 4, 8, 8);
    return PanelPlacement::originNear(anchor, size, visibleFrame(anchor.center(), mainScreen));
}

} // namespace tovi
