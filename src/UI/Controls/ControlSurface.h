// SPDX-License-Identifier: MIT
#pragma once

class QFocusEvent;
class QPainter;
class QWidget;

/// What the small controls have in common.
namespace tovi::ControlSurface {

/// The rounded background of a control: highlighted under the pointer, with a ring when the keyboard is in
/// it.
void paint(QPainter &painter, const QWidget &control, bool isHighlighted, bool showsFocus);

/// Whether a control shows its ring after this event, given whether it did before.
bool showsFocusAfter(const QFocusEvent &event, bool before);

} // namespace tovi::ControlSurface
