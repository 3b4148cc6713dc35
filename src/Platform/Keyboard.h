// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace tovi {

/// The bits that tell which modifiers go with a key.
namespace ModifierFlag {
enum : quint32 {
    shift = 1 << 17,
    control = 1 << 18, ///< Super
    option = 1 << 19,  ///< Alt
    command = 1 << 20, ///< Ctrl
    all = shift | control | option | command,
};
}

/// A key as the user pressed it.
struct KeyEvent
{
    quint32 keyCode = 0;   ///< the program's numbering, by what the key types in the present layout
    quint32 modifiers = 0; ///< of ModifierFlag
    bool operator==(const KeyEvent &) const = default;
};

/// The code of the key that types C.
inline constexpr quint32 keyCodeC = 8;

/// The keyboard that all applications share.
class Keyboard
{
public:
    virtual ~Keyboard() = default;

    /// The modifiers that are held down now. Any thread; asks only the display server.
    virtual quint32 modifierFlags() = 0;
    /// Presses and releases a key with exactly these modifiers in the frontmost application, which gets the
    /// keyboard for it if a panel of ours has it. Keys that are still down are released before and stay so.
    /// False where the present layout cannot type it. Any thread; asks only the display server.
    virtual bool post(const KeyEvent &key) = 0;
};

} // namespace tovi
