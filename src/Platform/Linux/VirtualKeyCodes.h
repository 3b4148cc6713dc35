// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>

#include <QtGlobal>

namespace tovi {

/// One key of the program's numbering (virtual key codes named after the US layout) in this system's terms.
struct VirtualKey
{
    quint32 keyCode; ///< the program's
    quint32 evdev;   ///< position on the keyboard, as in linux/input-event-codes.h
    quint32 keysym;  ///< what the position types, unshifted, in the US layout
};

namespace VirtualKeyCodes {

/// X servers and XKB number positions from here.
inline constexpr quint32 xkbOffset = 8;

/// All keys that have a name.
std::span<const VirtualKey> all();
/// Null for a code without a key.
const VirtualKey *find(quint32 keyCode);
/// The position as X key code.
std::optional<quint32> xKeycode(quint32 keyCode);
/// The program's code of an X key code (what Qt calls the native scan code).
std::optional<quint32> fromXKeycode(quint32 xKeycode);
/// The program's code of the key that types an ASCII character, unshifted, in the US layout; letters in
/// either case.
std::optional<quint32> fromCharacter(int character);

} // namespace VirtualKeyCodes

} // namespace tovi
