// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace tovi {

/// What the standard editing keys do in a text view.
enum class TextEditing { copy, paste, cut, selectAll };

/// False when the widget is no text view or cannot do it, as pasting where nothing may be written. What is
/// pasted arrives when the pasteboard's owner has given it. Main thread.
bool perform(TextEditing editing, QWidget &textView);

} // namespace tovi
