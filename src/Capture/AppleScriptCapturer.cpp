// SPDX-License-Identifier: MIT
#include "Capture/AppleScriptCapturer.h"

namespace tovi::AppleScriptCapturer {

// No browser can be asked in this build, so every page answers as an unknown application does.
std::optional<QString> selectedText()
{
    return {};
}

} // namespace tovi::AppleScriptCapturer
