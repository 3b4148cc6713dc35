// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QtGlobal>

namespace tovi {

/// System-wide shortcuts. Key codes and the modifier mask are the program's own numbering (see HotKey). Main
/// thread.
class HotKeyCenter
{
public:
    enum class Registration {
        Registered,
        Refused,     ///< another client holds it, the key is not on the keyboard, or it has no modifier
        Unsupported, ///< this desktop binds no shortcuts for applications
    };
    using Handler = std::function<void(quint32 number)>;

    virtual ~HotKeyCenter() = default;

    /// The handler of all presses; called on the main thread inside event dispatch, so it must defer its
    /// work. Holding a shortcut down is one press.
    virtual void setHandler(Handler handler) = 0;
    virtual Registration registerHotKey(quint32 number, quint32 keyCode, quint32 modifiers) = 0;
    virtual void unregisterHotKey(quint32 number) = 0;
    /// The code of the key at a place of the keyboard, as a window's key event tells it (native scan code);
    /// none for a key that cannot be part of a shortcut.
    virtual std::optional<quint32> keyCodeAt(quint32 nativeScanCode) const = 0;
};

} // namespace tovi
