// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>

#include "Platform/Clock.h"
#include "Platform/Keyboard.h"
#include "Platform/X11/KeyboardLayout.h"
#include "Platform/X11/KeyboardModifiers.h"
#include "Platform/X11/X11RawInput.h"

namespace tovi {

/// Watches one key, found by what it types in the present layout, in all applications; drops every other key
/// unseen. Works on Qt's connection. Main thread.
class X11KeyDownMonitor final : public QAbstractNativeEventFilter
{
public:
    using Handler = std::function<void(const KeyEvent &)>;

    X11KeyDownMonitor(X11RawInput &rawInput, Clock &clock, quint32 keyCode, Handler handler);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    void pressed(quint32 keycode);
    void deliver();
    void startRepeating(quint32 keycode);
    void repeatAfter(Clock::Duration delay, Clock::Duration interval);
    void stopRepeating();
    xcb_keycode_t watchedKeycode();

    X11RawInput &m_rawInput;
    Clock &m_clock;
    const quint32 m_keyCode;
    const Handler m_handler;
    uint8_t m_xkbEvent = 0; ///< 0 without the extension
    KeyboardState m_state;
    bool m_isLayoutKnown = false;
    KeyboardLayout m_layout;
    KeyboardModifiers m_modifiers;
    Subscription m_presses;
    Subscription m_releases; ///< while the key may repeat
    Subscription m_repeat;
};

} // namespace tovi
