// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include <QAbstractNativeEventFilter>
#include <QObject>

#include "Platform/HotKeyCenter.h"
#include "Platform/Subscription.h"
#include "Platform/X11/KeyboardModifiers.h"

namespace tovi {

class X11RawInput;

/// Shortcuts as passive key grabs on the root window, by the key's position on the keyboard, whatever the
/// layout and the state of the lock keys. Works on Qt's connection. Main thread.
class X11HotKeyCenter final : public HotKeyCenter, public QAbstractNativeEventFilter
{
public:
    explicit X11HotKeyCenter(X11RawInput &rawInput);
    ~X11HotKeyCenter() override;

    void setHandler(Handler handler) override { m_handler = std::move(handler); }
    Registration registerHotKey(quint32 number, quint32 keyCode, quint32 modifiers) override;
    void unregisterHotKey(quint32 number) override;
    std::optional<quint32> keyCodeAt(quint32 nativeScanCode) const override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    struct Grab
    {
        quint32 modifiers; ///< the program's
        xcb_keycode_t keycode;
        uint16_t state; ///< 0 while not grabbed
    };
    bool grab(Grab &grab) const;
    void ungrab(Grab &grab) const;
    void pressed(const xcb_key_press_event_t &event);
    void letGo(const xcb_key_press_event_t &event);
    bool isDown(xcb_keycode_t keycode) const;
    void watchRelease(xcb_keycode_t keycode);
    void keyboardChanged();

    X11RawInput &m_rawInput;
    Handler m_handler;
    std::map<quint32, Grab> m_grabs;
    KeyboardModifiers m_keyboard;
    xcb_connection_t *m_connection;
    xcb_window_t m_root;
    uint8_t m_xkbEvent = 0;            // 0 without the extension
    xcb_keycode_t m_heldKey = 0;       // the last shortcut's key, as long as it may be down
    xcb_timestamp_t m_releaseTime = 0; // of a release under the grab, 0 for none
    Subscription m_releases;           // outside the grab, while the key is held
    bool m_renewalPending = false;
    QObject m_context; // ends deferred work with us
};

} // namespace tovi
