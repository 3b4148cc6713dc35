// SPDX-License-Identifier: MIT
#include "Platform/X11/KeyboardModifiers.h"

#include <X11/keysym.h>

#include "HotKey.h"
#include "Platform/Keyboard.h"
#include "Platform/X11/Xcb.h"

namespace tovi {

KeyboardModifiers KeyboardModifiers::read(const XcbReplies &server)
{
    auto *connection = server.connection();
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const auto modifierCookie = xcb_get_modifier_mapping(connection);
    const auto keyboardCookie = xcb_get_keyboard_mapping(
        connection, setup->min_keycode, static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1));
    const auto modifiers = server.reply(modifierCookie, xcb_get_modifier_mapping_reply);
    const auto keyboard = server.reply(keyboardCookie, xcb_get_keyboard_mapping_reply);
    KeyboardModifiers result;
    if (!modifiers || !keyboard)
        return result;

    const xcb_keycode_t *keycodes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    const xcb_keysym_t *keysyms = xcb_get_keyboard_mapping_keysyms(keyboard.get());
    const int perModifier = modifiers->keycodes_per_modifier;
    const int perKeycode = keyboard->keysyms_per_keycode;
    constexpr int firstFreeModifier = 3; // Shift, Lock and Control are fixed
    constexpr int modifierCount = 8;
    for (int i = firstFreeModifier * perModifier; i < modifierCount * perModifier; ++i) {
        const auto bit = static_cast<uint16_t>(1u << (i / perModifier));
        if (keycodes[i] < setup->min_keycode)
            continue;
        for (int level = 0; level < perKeycode; ++level) {
            switch (keysyms[(keycodes[i] - setup->min_keycode) * perKeycode + level]) {
            case XK_Alt_L:
            case XK_Alt_R:
                result.alt |= bit;
                break;
            case XK_Super_L:
            case XK_Super_R:
                result.super |= bit;
                break;
            case XK_Num_Lock:
                result.numLock |= bit;
                break;
            case XK_Scroll_Lock:
                result.scrollLock |= bit;
                break;
            }
        }
    }
    // A key bound to several bits is pressed with any of them; a grab needs one. Alt takes precedence where
    // a keyboard puts both on one bit.
    const auto lowest = [](uint16_t bits) { return static_cast<uint16_t>(bits & -bits); };
    result.alt = lowest(result.alt);
    result.super = lowest(result.super & ~result.alt);
    const auto taken = static_cast<uint16_t>(result.alt | result.super);
    result.numLock &= ~taken;
    result.scrollLock &= ~taken;
    return result;
}

std::optional<uint16_t> KeyboardModifiers::fromProgram(quint32 modifiers) const
{
    const struct
    {
        quint32 program;
        uint16_t native;
    } table[] = {{HotKey::command, XCB_MOD_MASK_CONTROL},
                 {HotKey::shift, XCB_MOD_MASK_SHIFT},
                 {HotKey::option, alt},
                 {HotKey::control, super}};
    uint16_t result = 0;
    for (const auto &[program, native] : table) {
        if (!(modifiers & program))
            continue;
        if (!native)
            return std::nullopt;
        result |= native;
    }
    return result ? std::optional(result) : std::nullopt;
}

uint16_t KeyboardModifiers::fromFlags(quint32 flags) const
{
    return static_cast<uint16_t>((flags & ModifierFlag::command ? XCB_MOD_MASK_CONTROL : 0) |
                                 (flags & ModifierFlag::shift ? XCB_MOD_MASK_SHIFT : 0) |
                                 (flags & ModifierFlag::option ? alt : 0) |
                                 (flags & ModifierFlag::control ? super : 0));
}

quint32 KeyboardModifiers::toFlags(uint16_t state) const
{
    return (state & XCB_MOD_MASK_CONTROL ? ModifierFlag::command : 0u) |
           (state & XCB_MOD_MASK_SHIFT ? ModifierFlag::shift : 0u) |
           (state & alt ? ModifierFlag::option : 0u) | (state & super ? ModifierFlag::control : 0u);
}

uint16_t KeyboardModifiers::relevant() const
{
    return static_cast<uint16_t>(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT | alt | super);
}

std::vector<uint16_t> KeyboardModifiers::lockCombinations() const
{
    std::vector<uint16_t> combinations{0};
    for (const uint16_t lock : {uint16_t(XCB_MOD_MASK_LOCK), numLock, scrollLock}) {
        if (!lock)
            continue;
        for (size_t i = 0, count = combinations.size(); i < count; ++i)
            combinations.push_back(static_cast<uint16_t>(combinations[i] | lock));
    }
    return combinations;
}

} // namespace tovi
