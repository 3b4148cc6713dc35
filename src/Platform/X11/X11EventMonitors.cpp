// SPDX-License-Identifier: MIT
#include "Platform/X11/X11EventMonitors.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>

#include "Platform/Linux/VirtualKeyCodes.h"
#include "Platform/X11/X11KeyDownMonitor.h"
#include "Platform/X11/X11RawInput.h"

namespace tovi {

namespace {

/// A click that the server gives to one of our windows; an open menu holds the pointer and takes all of them.
bool isOurClick()
{
    return QApplication::activePopupWidget() || QGuiApplication::topLevelAt(QCursor::pos());
}

/// A key that the server gives to one of our windows or menus.
bool isOurKey()
{
    return QApplication::activePopupWidget() || QGuiApplication::focusWindow();
}

quint32 flagsOf(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ControlModifier ? ModifierFlag::command : 0u) |
           (modifiers & Qt::ShiftModifier ? ModifierFlag::shift : 0u) |
           (modifiers & Qt::AltModifier ? ModifierFlag::option : 0u) |
           (modifiers & Qt::MetaModifier ? ModifierFlag::control : 0u);
}

class LocalKeyDownMonitor final : public QObject
{
public:
    explicit LocalKeyDownMonitor(std::function<bool(const KeyEvent &)> handler)
        : m_handler(std::move(handler))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        // A key comes to the window first, then to its widgets.
        if (event->type() != QEvent::KeyPress || !receiver->isWindowType())
            return false;
        const auto *press = static_cast<const QKeyEvent *>(event);
        auto keyCode = VirtualKeyCodes::fromCharacter(press->key());
        if (!keyCode)
            keyCode = VirtualKeyCodes::fromXKeycode(press->nativeScanCode());
        const auto handler = m_handler; // it may end this monitor
        return keyCode && handler({*keyCode, flagsOf(press->modifiers())});
    }

private:
    const std::function<bool(const KeyEvent &)> m_handler;
};

} // namespace

Subscription X11EventMonitors::addGlobalMouseDownMonitor(std::function<void()> handler)
{
    return m_rawInput.watch(X11RawInput::Kind::ButtonPress, [handler = std::move(handler)](quint32 button) {
        constexpr quint32 left = 1;
        constexpr quint32 right = 3;
        if ((button == left || button == right) && !isOurClick())
            handler();
    });
}

Subscription X11EventMonitors::addGlobalKeyDownMonitor(quint32 keyCode,
                                                       std::function<void(const KeyEvent &)> handler)
{
    const auto deliver = [handler = std::move(handler)](const KeyEvent &event) {
        if (!isOurKey())
            handler(event);
    };
    return Subscription(
        [monitor = std::make_shared<X11KeyDownMonitor>(m_rawInput, m_clock, keyCode, deliver)] {});
}

Subscription X11EventMonitors::addLocalKeyDownMonitor(std::function<bool(const KeyEvent &)> handler)
{
    return Subscription([monitor = std::make_shared<LocalKeyDownMonitor>(std::move(handler))] {});
}

} // namespace tovi
