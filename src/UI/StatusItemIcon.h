// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QIcon>

namespace tovi {

/// The status item's picture for a dark or a light background; on an unknown one, a shape that is seen on
/// both. Main thread.
QIcon statusItemIcon(std::optional<bool> isDarkBackground);

} // namespace tovi
