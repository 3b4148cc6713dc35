// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QRectF>

class QWidget;

namespace tovi {

/// A borderless floating top-level window: above other windows, on all workspaces, in no taskbar or task
/// switcher. May be destroyed inside its own callbacks and inside events of its content. Frames in points,
/// origin bottom-left of the primary screen, y up. Main thread.
class Panel
{
public:
    virtual ~Panel() = default;

    virtual QRectF frame() const = 0;
    virtual void setFrame(const QRectF &frame) = 0;
    /// Shows it above all windows without activating the program.
    virtual void orderFrontRegardless() = 0;
    /// Directs the keyboard to it; the previous window gets the keyboard back when the panel goes.
    virtual void makeKey() = 0;
    virtual void orderOut() = 0;
    virtual bool isVisible() const = 0;

    /// Esc was pressed while the panel is key and nothing inside it wanted the key.
    std::function<void()> onEscape;
};

/// Makes panels; the only code that places top-level windows. A panel owns its content and keeps it as large
/// as itself.
class PanelHost
{
public:
    virtual ~PanelHost() = default;
    virtual std::unique_ptr<Panel> makePanel(std::unique_ptr<QWidget> content) = 0;
    /// A window over a whole display, without decoration, above all others; it comes within a moment and
    /// changes neither the active window nor the focus. Where the content paints nothing the screen shows
    /// through, or, where the desktop cannot do that, a picture of the screen when the overlay came. Once it
    /// is key, all keys of the desktop go to it until it goes. Keys and closing are the content's: onEscape
    /// is not called.
    virtual std::unique_ptr<Panel> makeOverlay(std::unique_ptr<QWidget> content) = 0;
    /// Whether translucent windows are blended with what is behind them. May change at any time.
    virtual bool isCompositing() const = 0;
};

} // namespace tovi
