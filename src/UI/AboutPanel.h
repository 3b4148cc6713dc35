// SPDX-License-Identifier: MIT
#pragma once

/// The standard about panel: one window, which does not keep the others from working. Main thread.
namespace tovi::AboutPanel {

/// Shows it, or brings it to the front.
void orderFront();

} // namespace tovi::AboutPanel
