// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>

#include "Platform/Keyboard.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

class FrontWindow;

/// The server's keyboard, typed on through its test extension. Connects at its first use.
class X11Keyboard final : public Keyboard
{
public:
    explicit X11Keyboard(FrontWindow &frontWindow)
        : m_frontWindow(frontWindow)
    {}

    quint32 modifierFlags() override;
    bool post(const KeyEvent &key) override;

private:
    struct Chord
    {
        xcb_keycode_t key;
        std::vector<xcb_keycode_t> modifiers;
    };
    bool connect();
    std::optional<Chord> chordFor(const KeyEvent &key);
    void releaseAll();
    void giveKeyboardBack();
    void fake(uint8_t type, xcb_keycode_t keycode);

    FrontWindow &m_frontWindow;
    std::mutex m_mutex; ///< guards the rest
    std::optional<XcbSession> m_session;
    bool m_isUsable = false;
};

} // namespace tovi
