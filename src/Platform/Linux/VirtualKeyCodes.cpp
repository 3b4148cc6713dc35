// SPDX-License-Identifier: MIT
#include "Platform/Linux/VirtualKeyCodes.h"

#include <algorithm>
#include <iterator>

#include <X11/keysym.h>
#include <linux/input-event-codes.h>

namespace tovi::VirtualKeyCodes {

namespace {

// clang-format off
constexpr VirtualKey keys[] = {
    {0, KEY_A, XK_a}, {11, KEY_B, XK_b}, {8, KEY_C, XK_c},
    {2, KEY_D, XK_d}, {14, KEY_E, XK_e}, {3, KEY_F, XK_f},
    {5, KEY_G, XK_g}, {4, KEY_H, XK_h}, {34, KEY_I, XK_i},
    {38, KEY_J, XK_j}, {40, KEY_K, XK_k}, {37, KEY_L, XK_l},
    {46, KEY_M, XK_m}, {45, KEY_N, XK_n}, {31, KEY_O, XK_o},
    {35, KEY_P, XK_p}, {12, KEY_Q, XK_q}, {15, KEY_R, XK_r},
    {1, KEY_S, XK_s}, {17, KEY_T, XK_t}, {32, KEY_U, XK_u},
    {9, KEY_V, XK_v}, {13, KEY_W, XK_w}, {7, KEY_X, XK_x},
    {16, KEY_Y, XK_y}, {6, KEY_Z, XK_z}, {29, KEY_0, XK_0},
    {18, KEY_1, XK_1}, {19, KEY_2, XK_2}, {20, KEY_3, XK_3},
    {21, KEY_4, XK_4}, {23, KEY_5, XK_5}, {22, KEY_6, XK_6},
    {26, KEY_7, XK_7}, {28, KEY_8, XK_8}, {25, KEY_9, XK_9},
    {27, KEY_MINUS, XK_minus}, {24, KEY_EQUAL, XK_equal}, {33, KEY_LEFTBRACE, XK_bracketleft},
    {30, KEY_RIGHTBRACE, XK_bracketright}, {42, KEY_BACKSLASH, XK_backslash}, {41, KEY_SEMICOLON, XK_semicolon},
    {39, KEY_APOSTROPHE, XK_apostrophe}, {43, KEY_COMMA, XK_comma}, {47, KEY_DOT, XK_period},
    {44, KEY_SLASH, XK_slash}, {50, KEY_GRAVE, XK_grave}, {49, KEY_SPACE, XK_space},
    {36, KEY_ENTER, XK_Return}, {48, KEY_TAB, XK_Tab}, {53, KEY_ESC, XK_Escape},
    {51, KEY_BACKSPACE, XK_BackSpace}, {117, KEY_DELETE, XK_Delete}, {123, KEY_LEFT, XK_Left},
    {124, KEY_RIGHT, XK_Right}, {125, KEY_DOWN, XK_Down}, {126, KEY_UP, XK_Up},
    {115, KEY_HOME, XK_Home}, {119, KEY_END, XK_End}, {116, KEY_PAGEUP, XK_Page_Up},
    {121, KEY_PAGEDOWN, XK_Page_Down}, {122, KEY_F1, XK_F1}, {120, KEY_F2, XK_F2},
    {99, KEY_F3, XK_F3}, {118, KEY_F4, XK_F4}, {96, KEY_F5, XK_F5},
    {97, KEY_F6, XK_F6}, {98, KEY_F7, XK_F7}, {100, KEY_F8, XK_F8},
    {101, KEY_F9, XK_F9}, {109, KEY_F10, XK_F10}, {103, KEY_F11, XK_F11},
    {111, KEY_F12, XK_F12},
};
// clang-format on

} // namespace

std::span<const VirtualKey> all()
{
    return keys;
}

const VirtualKey *find(quint32 keyCode)
{
    const auto it = std::ranges::find(keys, keyCode, &VirtualKey::keyCode);
    return it == std::end(keys) ? nullptr : it;
}

std::optional<quint32> xKeycode(quint32 keyCode)
{
    const VirtualKey *key = find(keyCode);
    return key ? std::optional(key->evdev + xkbOffset) : std::nullopt;
}

std::optional<quint32> fromXKeycode(quint32 xKeycode)
{
    const auto it =
        std::ranges::find_if(keys, [&](const VirtualKey &key) { return key.evdev + xkbOffset == xKeycode; });
    return it == std::end(keys) ? std::nullopt : std::optional(it->keyCode);
}

std::optional<quint32> fromCharacter(int character)
{
    // Symbols of ASCII characters have their numbers.
    const int symbol = character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
    const auto it = std::ranges::find_if(keys, [&](const VirtualKey &key) {
        return symbol < 0x80 && key.keysym == static_cast<quint32>(symbol);
    });
    return it == std::end(keys) ? std::nullopt : std::optional(it->keyCode);
}

} // namespace tovi::VirtualKeyCodes
