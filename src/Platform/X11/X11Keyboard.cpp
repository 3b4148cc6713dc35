// SPDX-License-Identifier: MIT
#include "Platform/X11/X11Keyboard.h"

#include <X11/keysym.h>
#include <xcb/xtest.h>

#include "Platform/Linux/VirtualKeyCodes.h"
#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/KeyboardLayout.h"
#include "Platform/X11/KeyboardModifiers.h"

namespace tovi {

namespace {

constexpr std::chrono::milliseconds limit{250};

} // namespace

bool X11Keyboard::connect()
{
    // The server may have gone and come back.
    if (!m_session || !m_session->isOpen()) {
        m_session.emplace();
        m_session->startDeadline(limit);
        const auto *test =
            m_session->isOpen() ? xcb_get_extension_data(m_session->connection(), &xcb_test_id) : nullptr;
        m_isUsable = test && test->present && KeyboardLayout::useExtension(*m_session);
    }
    m_session->startDeadline(limit);
    return m_isUsable && m_session->isOpen();
}

quint32 X11Keyboard::modifierFlags()
{
    const std::scoped_lock lock(m_mutex);
    if (!connect())
        return 0;
    const uint16_t held = KeyboardState::read(*m_session).held;
    return held ? KeyboardModifiers::read(*m_session).toFlags(held) : 0;
}

bool X11Keyboard::post(const KeyEvent &key)
{
    const std::scoped_lock lock(m_mutex);
    if (!connect())
        return false;
    const auto chord = chordFor(key);
    if (!chord)
        return false;
    giveKeyboardBack();
    releaseAll();
    for (const xcb_keycode_t modifier : chord->modifiers)
        fake(XCB_KEY_PRESS, modifier);
    fake(XCB_KEY_PRESS, chord->key);
    fake(XCB_KEY_RELEASE, chord->key);
    for (auto it = chord->modifiers.rbegin(); it != chord->modifiers.rend(); ++it)
        fake(XCB_KEY_RELEASE, *it);
    m_session->reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(m_session->connection()));
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_session->connection())})
        continue; // changes of the layout, which is asked for each time
    return true;
}

std::optional<X11Keyboard::Chord> X11Keyboard::chordFor(const KeyEvent &key)
{
    const VirtualKey *wanted = VirtualKeyCodes::find(key.keyCode);
    if (!wanted)
        return std::nullopt;
    // Asked for each time: the layout may be another one now.
    const quint8 group = KeyboardState::read(*m_session).group;
    auto keycode = KeyboardLayout(*m_session, wanted->keysym).keycode(group);
    // Where no layout types C, what copied before Control-C came up still copies; terminals excepted.
    if (!keycode && key == KeyEvent{keyCodeC, ModifierFlag::command})
        keycode = KeyboardLayout(*m_session, XK_Insert).keycode(group);
    if (!keycode)
        return std::nullopt;

    Chord chord{*keycode, {}};
    const KeyboardModifiers modifiers = KeyboardModifiers::read(*m_session);
    const uint16_t state = modifiers.fromFlags(key.modifiers);
    if (modifiers.toFlags(state) != key.modifiers)
        return std::nullopt; // one of them is not on the keyboard: without it the key means something else
    const auto mapping =
        m_session->reply<xcb_get_modifier_mapping_reply_t>(xcb_get_modifier_mapping(m_session->connection()));
    if (!mapping)
        return std::nullopt;
    const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(mapping.get());
    for (int bit = 0; bit < 8; ++bit) {
        if (!(state & (1 << bit)))
            continue;
        const auto *first = keycodes + bit * mapping->keycodes_per_modifier;
        const auto *last = first + mapping->keycodes_per_modifier;
        const auto *found = std::find_if(first, last, [](xcb_keycode_t code) { return code != 0; });
        if (found == last)
            return std::nullopt;
        chord.modifiers.push_back(*found);
    }
    return chord;
}

/// What is held would mix in; a key other than a modifier would go on repeating, now as a letter.
void X11Keyboard::releaseAll()
{
    const auto keys = m_session->reply<xcb_query_keymap_reply_t>(xcb_query_keymap(m_session->connection()));
    for (int keycode = 0; keys && keycode < 256; ++keycode) {
        if (keys->keys[keycode / 8] & (1 << keycode % 8))
            fake(XCB_KEY_RELEASE, static_cast<xcb_keycode_t>(keycode));
    }
}

/// A panel of ours that has the keyboard would get the keystroke.
void X11Keyboard::giveKeyboardBack()
{
    const auto front = m_frontWindow.details();
    if (front && !front->hasKeyboard)
        xcb_set_input_focus(m_session->connection(), XCB_INPUT_FOCUS_PARENT, front->window.id,
                            XCB_CURRENT_TIME);
}

void X11Keyboard::fake(uint8_t type, xcb_keycode_t keycode)
{
    xcb_test_fake_input(m_session->connection(), type, keycode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

} // namespace tovi
