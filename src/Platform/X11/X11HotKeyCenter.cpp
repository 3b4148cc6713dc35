// SPDX-License-Identifier: MIT
#include "Platform/X11/X11HotKeyCenter.h"

#include <algorithm>

#include <QCoreApplication>

#include "Platform/Linux/VirtualKeyCodes.h"
#include "Platform/X11/X11RawInput.h"
#include "Platform/X11/Xcb.h"
#include "Platform/X11/Xkb.h"

namespace tovi {

X11HotKeyCenter::X11HotKeyCenter(X11RawInput &rawInput)
    : m_rawInput(rawInput)
    , m_connection(QtXcb::connection())
    , m_root(QtXcb::root())
{
    m_keyboard = KeyboardModifiers::read(m_connection);
    if (const auto *xkb = xcb_get_extension_data(m_connection, &xcb_xkb_id); xkb && xkb->present)
        m_xkbEvent = xkb->first_event;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeyCenter::~X11HotKeyCenter()
{
    while (!m_grabs.empty())
        unregisterHotKey(m_grabs.begin()->first);
}

HotKeyCenter::Registration X11HotKeyCenter::registerHotKey(quint32 number, quint32 keyCode, quint32 modifiers)
{
    unregisterHotKey(number);
    const auto keycode = VirtualKeyCodes::xKeycode(keyCode);
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    if (!keycode || *keycode < setup->min_keycode || *keycode > setup->max_keycode)
        return Registration::Refused;
    Grab wanted{modifiers, static_cast<xcb_keycode_t>(*keycode), 0};
    if (!grab(wanted))
        return Registration::Refused;
    m_grabs.emplace(number, wanted);
    // Whoever has just recorded these keys still holds them: their repetition is no press.
    if (m_rawInput.isPresent() && isDown(wanted.keycode))
        watchRelease(wanted.keycode);
    return Registration::Registered;
}

void X11HotKeyCenter::unregisterHotKey(quint32 number)
{
    const auto it = m_grabs.find(number);
    if (it == m_grabs.end())
        return;
    ungrab(it->second);
    m_grabs.erase(it);
}

std::optional<quint32> X11HotKeyCenter::keyCodeAt(quint32 nativeScanCode) const
{
    return VirtualKeyCodes::fromXKeycode(nativeScanCode);
}

bool X11HotKeyCenter::grab(Grab &grab) const
{
    const auto state = m_keyboard.fromProgram(grab.modifiers);
    // The server lets one client grab twice; the second of our own would then take the first one's grab away.
    const bool ours = std::ranges::any_of(m_grabs, [&](const auto &other) {
        return state && other.second.keycode == grab.keycode && other.second.state == *state;
    });
    if (!state || ours)
        return false;
    std::vector<xcb_void_cookie_t> cookies;
    for (const uint16_t locks : m_keyboard.lockCombinations())
        cookies.push_back(xcb_grab_key_checked(m_connection, 0, m_root, *state | locks, grab.keycode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    bool complete = true;
    for (const auto cookie : cookies)
        complete &= !XcbOwned<xcb_generic_error_t>(xcb_request_check(m_connection, cookie));
    grab.state = *state;
    if (!complete)
        ungrab(grab);
    return complete;
}

void X11HotKeyCenter::ungrab(Grab &grab) const
{
    if (!grab.state)
        return;
    for (const uint16_t locks : m_keyboard.lockCombinations())
        xcb_ungrab_key(m_connection, grab.keycode, m_root, grab.state | locks);
    xcb_flush(m_connection);
    grab.state = 0;
}

bool X11HotKeyCenter::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const uint8_t type = event->response_type & ~0x80;
    if (type == XCB_KEY_PRESS) {
        pressed(*static_cast<const xcb_key_press_event_t *>(message));
    } else if (type == XCB_KEY_RELEASE) {
        const auto *release = static_cast<const xcb_key_release_event_t *>(message);
        if (release->detail == m_heldKey)
            m_releaseTime = release->time;
    } else if (type == XCB_MAPPING_NOTIFY || (m_xkbEvent && type == m_xkbEvent)) {
        // XKB's events carry their kind in the second byte.
        const bool map = type == XCB_MAPPING_NOTIFY || event->pad0 == XCB_XKB_MAP_NOTIFY ||
                         event->pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY;
        // One change of layout comes as many events.
        if (map && !std::exchange(m_renewalPending, true))
            QMetaObject::invokeMethod(
                &m_context, [this] { keyboardChanged(); }, Qt::QueuedConnection);
    }
    // Qt ignores keys on the root window, but takes their time: it vouches for the panel that follows.
    return false;
}

void X11HotKeyCenter::pressed(const xcb_key_press_event_t &event)
{
    // A key that is held down is pressed again after no release, or, now that its repetition has brought the
    // grab back, released and pressed in the same millisecond.
    if (event.detail == m_heldKey && (!m_releaseTime || event.time == m_releaseTime)) {
        m_releases.reset();
        return;
    }
    const uint16_t state = event.state & m_keyboard.relevant();
    for (const auto &[number, grab] : m_grabs) {
        if (grab.state && grab.keycode == event.detail && grab.state == state) {
            const quint32 pressedNumber = number; // the handler may unregister it
            letGo(event);
            if (const Handler handler = m_handler)
                handler(pressedNumber);
            return;
        }
    }
}

/// While a grab holds the keyboard, some toolkits tell that nothing of theirs has the focus; a finger rests
/// on the key for longer than a capture takes.
void X11HotKeyCenter::letGo(const xcb_key_press_event_t &event)
{
    if (!m_rawInput.isPresent())
        return;
    // Else a window of ours holds the keyboard, and keeps it: the server then gives it the shortcuts, too.
    if (event.event == m_root)
        xcb_ungrab_keyboard(m_connection, event.time);
    watchRelease(event.detail);
}

bool X11HotKeyCenter::isDown(xcb_keycode_t keycode) const
{
    const XcbOwned<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr));
    return keys && (keys->keys[keycode / 8] & (1 << keycode % 8));
}

/// Until the key is released it counts as held.
void X11HotKeyCenter::watchRelease(xcb_keycode_t keycode)
{
    m_heldKey = keycode;
    m_releaseTime = 0;
    const auto released = [this](quint32 other) {
        if (other == m_heldKey) {
            m_heldKey = 0;
            m_releases.reset();
        }
    };
    m_releases = m_rawInput.watch(X11RawInput::Kind::KeyRelease, released);
    if (!isDown(keycode))
        released(keycode);
}

void X11HotKeyCenter::keyboardChanged()
{
    m_renewalPending = false;
    const KeyboardModifiers keyboard = KeyboardModifiers::read(m_connection);
    if (keyboard == m_keyboard)
        return; // positions have not moved: the grabs hold
    for (auto &[number, grab] : m_grabs)
        ungrab(grab);
    m_keyboard = keyboard;
    for (auto &[number, wanted] : m_grabs)
        grab(wanted);
}

} // namespace tovi
