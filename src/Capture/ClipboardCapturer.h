// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

#include "Platform/Clock.h"

namespace tovi::ClipboardCapturer {

struct CopiedText
{
    QString text;             ///< never blank, untrimmed
    bool usedMenuBar = false; ///< the application's own Copy menu item produced it
    bool operator==(const CopiedText &) const = default;
};

/// What the frontmost application copies when told to: through its Copy menu item (where preferred), else by
/// the copy keystroke. Waits at most `timeout` for each to reach the pasteboard; `restoreClipboard` puts the
/// previous contents back. Blocks: capture queue only.
std::optional<CopiedText> selectedText(bool restoreClipboard, bool preferMenuBarCopy,
                                       Clock::Duration timeout);

/// Whether a copy keystroke that is seen now is this program's own. Any thread.
bool isSimulating();

/// The text on the pasteboard, untrimmed; none when it is blank or marked as secret. Blocks: never on the
/// main thread.
std::optional<QString> readPasteboardText();

} // namespace tovi::ClipboardCapturer
