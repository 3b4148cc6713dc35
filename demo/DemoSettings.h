// SPDX-License-Identifier: MIT
#pragma once

namespace tovi {

class DesktopSession;

/// Writes the program's settings into the desktop's configuration folder: English to Spanish by the on-device
/// engine, nothing that needs a network.
void writeDemoSettings(const DesktopSession &desktop);

} // namespace tovi
