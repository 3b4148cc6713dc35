// SPDX-License-Identifier: MIT
#include "Platform/X11/KeyboardLayout.h"

#include <algorithm>

#include "Platform/X11/Xkb.h"

namespace tovi {

bool KeyboardLayout::useExtension(const XcbReplies &server)
{
    const auto *extension = xcb_get_extension_data(server.connection(), &xcb_xkb_id);
    if (!extension || !extension->present)
        return false;
    const auto reply =
        server.reply(xcb_xkb_use_extension(server.connection(), 1, 0), xcb_xkb_use_extension_reply);
    return reply && reply->supported;
}

KeyboardLayout::KeyboardLayout(const XcbReplies &server, quint32 keysym)
{
    constexpr uint16_t part = XCB_XKB_MAP_PART_KEY_SYMS;
    const auto reply = server.reply(xcb_xkb_get_map(server.connection(), XCB_XKB_ID_USE_CORE_KBD, part, 0, 0,
                                                    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0),
                                    xcb_xkb_get_map_reply);
    if (!reply)
        return;
    xcb_xkb_get_map_map_t map{};
    xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(reply.get()), reply->nTypes, reply->nKeySyms,
                               reply->nKeyActions, reply->totalActions, reply->totalKeyBehaviors,
                               reply->virtualMods, reply->totalKeyExplicit, reply->totalModMapKeys,
                               reply->totalVModMapKeys, reply->present, &map);
    auto keys = xcb_xkb_get_map_map_syms_rtrn_iterator(reply.get(), &map);
    for (int keycode = reply->firstKeySym; keys.rem; xcb_xkb_key_sym_map_next(&keys), ++keycode) {
        const int groups = keys.data->groupInfo & 0x0f;
        const xcb_keysym_t *symbols = xcb_xkb_key_sym_map_syms(keys.data);
        const int count = xcb_xkb_key_sym_map_syms_length(keys.data);
        for (int group = 0; group < groups && group * keys.data->width < count; ++group) {
            if (symbols[group * keys.data->width] != keysym)
                continue;
            m_keycodes.resize(std::max<size_t>(m_keycodes.size(), static_cast<size_t>(group) + 1));
            xcb_keycode_t &place = m_keycodes[static_cast<size_t>(group)];
            place = place ? place : static_cast<xcb_keycode_t>(keycode);
        }
    }
}

std::optional<xcb_keycode_t> KeyboardLayout::keycode(quint8 group) const
{
    if (group < m_keycodes.size() && m_keycodes[group])
        return m_keycodes[group];
    const auto any = std::ranges::find_if(m_keycodes, [](xcb_keycode_t keycode) { return keycode != 0; });
    return any == m_keycodes.end() ? std::nullopt : std::optional(*any);
}

KeyboardState KeyboardState::read(const XcbReplies &server)
{
    const auto reply = server.reply(xcb_xkb_get_state(server.connection(), XCB_XKB_ID_USE_CORE_KBD),
                                    xcb_xkb_get_state_reply);
    if (!reply)
        return {};
    return {.held = static_cast<quint8>(reply->baseMods | reply->latchedMods),
            .effective = reply->mods,
            .group = reply->group};
}

} // namespace tovi
