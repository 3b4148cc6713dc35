// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

namespace tovi::AppleScriptCapturer {

/// The selection of the active page when the frontmost application is a known browser, asked of the browser
/// itself; never blank. Blocks until the browser answers: capture queue only.
std::optional<QString> selectedText();

} // namespace tovi::AppleScriptCapturer
