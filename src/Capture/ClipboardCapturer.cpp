// SPDX-License-Identifier: MIT
#include "Capture/ClipboardCapturer.h"

namespace tovi::ClipboardCapturer {

// This build neither makes applications copy nor reads the pasteboard: the clipboard stays untouched.
std::optional<CopiedText> selectedText(bool, bool, Clock::Duration)
{
    return {};
}

std::optional<QString> readPasteboardText()
{
    return {};
}

} // namespace tovi::ClipboardCapturer
