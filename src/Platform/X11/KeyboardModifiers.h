// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QtGlobal>

#include "Platform/X11/XcbSession.h"

namespace tovi {

/// Which of the keyboard's modifier bits mean what; it differs between keyboards and changes with the layout.
struct KeyboardModifiers
{
    uint16_t alt = 0; ///< 0 where the keyboard has none, as for all of these
    uint16_t super = 0;
    uint16_t numLock = 0;
    uint16_t scrollLock = 0;
    bool operator==(const KeyboardModifiers &) const = default;

    /// Asks the server (two round trips).
    static KeyboardModifiers read(const XcbReplies &server);

    /// The bits for a mask of the program's; none when one of its modifiers is not on the keyboard, or when
    /// it has no modifier.
    std::optional<uint16_t> fromProgram(quint32 modifiers) const;
    /// The server's bits for bits of ModifierFlag, and back; those that are not on the keyboard are left out.
    uint16_t fromFlags(quint32 flags) const;
    quint32 toFlags(uint16_t state) const;
    /// The bits that tell one shortcut from another.
    uint16_t relevant() const;
    /// All combinations of the locks that are on the keyboard.
    std::vector<uint16_t> lockCombinations() const;
};

} // namespace tovi
