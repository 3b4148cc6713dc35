// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include "Platform/Pasteboard.h"

namespace tovi {

/// Watches the pasteboard while an application is made to copy. Blocks: capture queue only.
namespace PasteboardWatcher {

/// The first text that is new on the pasteboard within `timeout` after the action, else none; blank texts
/// included, texts marked as secret not. `restore` puts back what was there, unless another program has put
/// something new there meanwhile. An action that answers false could not be performed.
std::optional<QString> captureText(bool restore, Clock::Duration timeout,
                                   const std::function<bool()> &action);
/// Copies of the contents in all their forms; those that cannot be read are left out. Stops at an owner that
/// is silent for `limit`.
QList<PasteboardItem> backupItems(Pasteboard &pasteboard, Clock::Duration limit);
/// Whether there is nothing on the pasteboard, or nothing but an empty text.
bool isEffectivelyEmpty(Pasteboard &pasteboard, Clock::Duration limit);

} // namespace PasteboardWatcher

} // namespace tovi
