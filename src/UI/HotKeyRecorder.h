// SPDX-License-Identifier: MIT
#pragma once

#include "HotKeyStatus.h"

class QWidget;

namespace tovi {

/// A control that shows the shortcut of a slot and records a new one into its setting. While it records it
/// posts "com.brevoll.tovi.hotKeyRecordingChanged" with "recording" true, and false when it ends.
QWidget *makeHotKeyRecorder(HotKeyStatus::Slot slot, QWidget *parent);

} // namespace tovi
