// SPDX-License-Identifier: MIT
#pragma once

class QKeyEvent;
class QLineEdit;
class QMouseEvent;
class QPlainTextEdit;
class QPoint;
class QTextEdit;
class QWidget;

namespace tovi {

/// What the standard editing keys and the Edit menu do in a text view.
enum class TextEditing { undo, redo, cut, copy, paste, remove, selectAll };

/// False when the widget is no text view or cannot do it, as pasting where nothing may be written. What is
/// pasted arrives when the pasteboard's owner has given it. Main thread.
bool perform(TextEditing editing, QWidget &textView);
/// Whether it would change or copy something now; what others have copied is not looked at. Main thread.
bool canPerform(TextEditing editing, const QWidget &textView);

/// Whether the toolkit would type a letter that is meant for menus and shortcuts, as Alt is held.
bool isMeantForMenus(const QKeyEvent &event);

/// Whether the toolkit would paste what was selected last anywhere, for which it waits for the owner, who may
/// hang, on the main thread. Such events are for nobody.
bool pastesPrimarySelection(const QMouseEvent &event);

/// Shows the menu of what can be done in a text view at a point of it. The toolkit's own speaks English and
/// asks the clipboard's owner, who may hang, before it opens. Main thread.
void showEditMenu(QTextEdit &textView, const QPoint &at);
void showEditMenu(QPlainTextEdit &textView, const QPoint &at);
void showEditMenu(QLineEdit &textView, const QPoint &at);

} // namespace tovi
