// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include <QtGlobal>

#include "Platform/X11/XcbSession.h"

namespace tovi {

/// Which key types one character, unshifted, in each of the layouts that the user may switch between.
class KeyboardLayout
{
public:
    KeyboardLayout() = default;
    /// Asks the server (one round trip). Without its keyboard extension there is no such key.
    KeyboardLayout(const XcbReplies &server, quint32 keysym);

    /// The key in that layout, else in any; none where no layout has it.
    std::optional<xcb_keycode_t> keycode(quint8 group) const;

    /// Has to be called once for a connection before any of its keyboard requests; false without the
    /// extension. One round trip.
    static bool useExtension(const XcbReplies &server);

private:
    std::vector<xcb_keycode_t> m_keycodes; // by layout; 0 where it is not in it
};

/// What the keyboard's modifiers are doing. The bits are the server's.
struct KeyboardState
{
    quint8 held = 0;      ///< held down, or latched for the next key
    quint8 effective = 0; ///< locks included
    quint8 group = 0;     ///< the layout in use
    /// One round trip.
    static KeyboardState read(const XcbReplies &server);
};

} // namespace tovi
