// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "Platform/Linux/DesktopEntries.h"

namespace tovi {

/// What makes C the copy key in an application (bits of ModifierFlag), none where no key copies. Control-C
/// interrupts the program that runs in a terminal emulator, so these have their own.
std::optional<quint32> copyModifiers(const ApplicationHints &hints, const std::optional<DesktopEntry> &entry);

} // namespace tovi
