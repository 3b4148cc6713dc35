// SPDX-License-Identifier: MIT
#include "Platform/X11/X11KeyDownMonitor.h"

#include <QCoreApplication>

#include "Platform/Linux/VirtualKeyCodes.h"
#include "Platform/X11/Xkb.h"

namespace tovi {

X11KeyDownMonitor::X11KeyDownMonitor(X11RawInput &rawInput, Clock &clock, quint32 keyCode, Handler handler)
    : m_rawInput(rawInput)
    , m_clock(clock)
    , m_keyCode(keyCode)
    , m_handler(std::move(handler))
{
    auto *connection = QtXcb::connection();
    if (KeyboardLayout::useExtension(connection)) {
        m_xkbEvent = xcb_get_extension_data(connection, &xcb_xkb_id)->first_event;
        // The toolkit wants the same; asking again takes nothing from it.
        constexpr uint16_t state = XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
        xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, state, 0, state, 0, 0, nullptr);
        m_state = KeyboardState::read(connection);
    }
    QCoreApplication::instance()->installNativeEventFilter(this);
    m_presses = rawInput.watch(X11RawInput::Kind::KeyPress, [this](quint32 keycode) { pressed(keycode); });
}

bool X11KeyDownMonitor::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (eventType != "xcb_generic_event_t")
        return false;
    const uint8_t type = event->response_type & ~0x80;
    // The keyboard extension's events carry their kind in the second byte.
    if (type == XCB_MAPPING_NOTIFY ||
        (m_xkbEvent && type == m_xkbEvent &&
         (event->pad0 == XCB_XKB_MAP_NOTIFY || event->pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY))) {
        m_isLayoutKnown = false;
    } else if (m_xkbEvent && type == m_xkbEvent && event->pad0 == XCB_XKB_STATE_NOTIFY) {
        const auto *change = reinterpret_cast<const xcb_xkb_state_notify_event_t *>(event);
        m_state = {.held = static_cast<quint8>(change->baseMods | change->latchedMods),
                   .effective = change->mods,
                   .group = change->group};
    }
    return false;
}

xcb_keycode_t X11KeyDownMonitor::watchedKeycode()
{
    if (!m_isLayoutKnown) {
        const VirtualKey *key = VirtualKeyCodes::find(m_keyCode);
        m_layout = m_xkbEvent && key ? KeyboardLayout(QtXcb::connection(), key->keysym) : KeyboardLayout();
        m_modifiers = KeyboardModifiers::read(QtXcb::connection());
        m_isLayoutKnown = true;
    }
    // Where no layout types the character, many applications take the key's place for it.
    return m_layout.keycode(m_state.group)
        .value_or(static_cast<xcb_keycode_t>(VirtualKeyCodes::xKeycode(m_keyCode).value_or(0)));
}

void X11KeyDownMonitor::pressed(quint32 keycode)
{
    stopRepeating();
    if (keycode != watchedKeycode())
        return;
    startRepeating(keycode);
    deliver();
}

void X11KeyDownMonitor::deliver()
{
    m_handler({m_keyCode, m_modifiers.toFlags(m_state.effective)});
}

/// The server repeats a held key for applications only.
void X11KeyDownMonitor::startRepeating(quint32 keycode)
{
    // Letters that are typed are looked at no further.
    if (!m_xkbEvent || !m_modifiers.toFlags(m_state.held))
        return;
    auto *connection = QtXcb::connection();
    const XcbOwned<xcb_xkb_get_controls_reply_t> controls(xcb_xkb_get_controls_reply(
        connection, xcb_xkb_get_controls(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (!controls || !(controls->enabledControls & XCB_XKB_BOOL_CTRL_REPEAT_KEYS) ||
        !(controls->perKeyRepeat[keycode / 8] & (1 << keycode % 8)) || controls->repeatInterval == 0)
        return;
    m_releases = m_rawInput.watch(X11RawInput::Kind::KeyRelease, [this, keycode](quint32 released) {
        if (released == keycode)
            stopRepeating();
    });
    repeatAfter(std::chrono::milliseconds(controls->repeatDelay),
                std::chrono::milliseconds(controls->repeatInterval));
}

void X11KeyDownMonitor::repeatAfter(Clock::Duration delay, Clock::Duration interval)
{
    m_repeat = m_clock.after(delay, [this, interval] {
        repeatAfter(interval, interval);
        deliver();
    });
}

void X11KeyDownMonitor::stopRepeating()
{
    m_repeat.reset();
    m_releases.reset();
}

} // namespace tovi
