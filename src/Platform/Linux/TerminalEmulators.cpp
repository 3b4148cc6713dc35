// SPDX-License-Identifier: MIT
#include "Platform/Linux/TerminalEmulators.h"

#include <QHash>

#include "Platform/Keyboard.h"

namespace tovi {

namespace {

constexpr quint32 usual = ModifierFlag::command | ModifierFlag::shift;
constexpr quint32 alternative = ModifierFlag::command | ModifierFlag::option;

/// Terminal emulators by desktop entry, window class, window instance or process, in lower case. Those
/// without a key for copying take Control-Shift-C for Control-C.
const QHash<QString, std::optional<quint32>> &terminals()
{
    static const QHash<QString, std::optional<quint32>> table = [] {
        constexpr const char *withUsualKey[] = {
            "alacritty",
            "blackbox",
            "com.raggesilver.blackbox",
            "com.system76.cosmicterm",
            "contour",
            "cool-retro-term",
            "deepin-terminal",
            "foot",
            "footclient",
            "com.mitchellh.ghostty",
            "ghostty",
            "gnome-terminal",
            "gnome-terminal-" /* a process name ends here */,
            "gnome-terminal-server",
            "org.gnome.terminal",
            "guake",
            "hyper",
            "io.elementary.terminal",
            "kgx",
            "org.gnome.console",
            "kitty",
            "konsole",
            "org.kde.konsole",
            "lxterminal",
            "mate-terminal",
            "org.gnome.ptyxis",
            "ptyxis",
            "qterminal",
            "rio",
            "roxterm",
            "sakura",
            "st",
            "st-256color",
            "stterm",
            "tabby",
            "terminator",
            "terminology",
            "termit",
            "tilda",
            "tilix",
            "com.gexperts.tilix",
            "warp-terminal",
            "dev.warp.warp",
            "wezterm",
            "wezterm-gui",
            "org.wezfurlong.wezterm",
            "xfce4-terminal",
            "org.xfce.terminal",
            "yakuake",
            "org.kde.yakuake",
        };
        constexpr const char *withAlternativeKey[] = {"urxvt", "urxvtd", "rxvt-unicode"};
        constexpr const char *withoutKey[] = {
            "aterm", "debian-uxterm", "debian-xterm", "eterm", "koi8rxterm", "lxterm", "mlterm", "mrxvt",
            "rxvt",  "uxterm",        "wterm",        "x3270", "xterm",      "xvt",    "zutty",
        };
        QHash<QString, std::optional<quint32>> result;
        for (const char *name : withUsualKey)
            result.insert(QLatin1String(name), usual);
        for (const char *name : withAlternativeKey)
            result.insert(QLatin1String(name), alternative);
        for (const char *name : withoutKey)
            result.insert(QLatin1String(name), std::nullopt);
        return result;
    }();
    return table;
}

} // namespace

std::optional<quint32> copyModifiers(const ApplicationHints &hints, const std::optional<DesktopEntry> &entry)
{
    // The process comes first: windows may be named after what runs in them.
    for (const QString &name : {hints.processName, entry ? entry->id : QString(), hints.applicationId,
                                hints.windowClass, hints.windowInstance}) {
        const auto terminal = terminals().constFind(name.toLower());
        if (!name.isEmpty() && terminal != terminals().cend())
            return *terminal;
    }
    const bool isTerminal = entry && entry->categories.contains(QLatin1String("TerminalEmulator"));
    return isTerminal ? usual : quint32(ModifierFlag::command);
}

} // namespace tovi
