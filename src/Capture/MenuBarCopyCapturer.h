// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "Platform/Accessibility.h"

namespace tovi {

/// Finds the frontmost application's own Copy menu item, so that it can be pressed without sending any key.
/// Whatever goes wrong, there is none. The calls block (0.5 s at most for each request, 1.5 s for a search),
/// so never on the main thread.
namespace MenuBarCopyCapturer {

/// An item that can be pressed ("AXPress"); its messaging time-out is 0.5 s.
std::optional<AXElement> findCopyItem();

/// The order in which so many menus are searched: where Copy usually is comes first.
QList<qsizetype> searchOrder(qsizetype count);

} // namespace MenuBarCopyCapturer

} // namespace tovi
