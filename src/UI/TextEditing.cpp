// SPDX-License-Identifier: MIT
#include "UI/TextEditing.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>
#include <qcorofuture.h>
#include <qcorotask.h>

#include "Localization.h"
#include "Platform/Pasteboard.h"
#include "Platform/PasteboardQueue.h"
#include "UI/Controls/MenuPresenter.h"
#include "UI/EditableTextView.h"
#include "UI/ScrollableTextView.h"

namespace tovi {

namespace {

constexpr std::chrono::seconds readLimit{1};

QString selectedText(const QLineEdit &view)
{
    return view.echoMode() == QLineEdit::Normal ? view.selectedText() : QString();
}

template <class View>
QString selectedText(const View &view)
{
    if (const auto *scrollable = qobject_cast<const ScrollableTextView *>(&view))
        return scrollable->selectedText();
    // Not the document's plain text, which has lost its no-break spaces.
    return view.textCursor()
        .selectedText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

void removeSelection(QLineEdit &view)
{
    view.insert(QString());
}

template <class View>
void removeSelection(View &view)
{
    view.textCursor().removeSelectedText();
}

void insert(QLineEdit &view, const QString &text)
{
    view.insert(text);
}

template <class View>
void insert(View &view, const QString &text)
{
    // A widget that lays out all of a huge text would stand still.
    view.insertPlainText(EditableTextView::shown(text));
    view.ensureCursorVisible();
}

/// Not through the toolkit's clipboard: it waits for the owner on the main thread.
template <class View>
QCoro::Task<> paste(QPointer<View> view)
{
    auto reading = PasteboardQueue::shared().run([] {
        const auto answer = Platform::current().pasteboard().text(readLimit);
        return answer.status == Pasteboard::Status::Found ? answer.value.text : QString();
    });
    const QString text = co_await reading;
    if (view && !view->isReadOnly() && !text.isEmpty())
        insert(*view, text);
}

template <class View>
bool copy(const View &view)
{
    const QString text = selectedText(view);
    if (!text.isEmpty())
        Platform::current().pasteboard().setString(text);
    return !text.isEmpty();
}

bool hasSelection(const QLineEdit &view)
{
    return view.hasSelectedText();
}

template <class View>
bool hasSelection(const View &view)
{
    return view.textCursor().hasSelection();
}

bool isUndoAvailable(const QLineEdit &view)
{
    return view.isUndoAvailable();
}

template <class View>
bool isUndoAvailable(const View &view)
{
    return view.document()->isUndoAvailable();
}

bool isRedoAvailable(const QLineEdit &view)
{
    return view.isRedoAvailable();
}

template <class View>
bool isRedoAvailable(const View &view)
{
    return view.document()->isRedoAvailable();
}

bool isEmpty(const QLineEdit &view)
{
    return view.text().isEmpty();
}

template <class View>
bool isEmpty(const View &view)
{
    return view.document()->isEmpty();
}

bool canCopy(const QLineEdit &view)
{
    return view.hasSelectedText() && view.echoMode() == QLineEdit::Normal;
}

template <class View>
bool canCopy(const View &view)
{
    const auto *scrollable = qobject_cast<const ScrollableTextView *>(&view);
    return scrollable ? !scrollable->selectedText().isEmpty() : hasSelection(view);
}

template <class View>
bool canPerformIn(TextEditing editing, const View &view)
{
    const bool isWritable = !view.isReadOnly();
    switch (editing) {
    case TextEditing::undo:
        return isWritable && isUndoAvailable(view);
    case TextEditing::redo:
        return isWritable && isRedoAvailable(view);
    case TextEditing::cut:
        return isWritable && canCopy(view);
    case TextEditing::copy:
        return canCopy(view);
    case TextEditing::paste:
        return isWritable;
    case TextEditing::remove:
        return isWritable && hasSelection(view);
    case TextEditing::selectAll:
        return !isEmpty(view);
    }
    return false;
}

template <class View>
bool performIn(TextEditing editing, View &view)
{
    const bool isWritable = !view.isReadOnly();
    switch (editing) {
    case TextEditing::undo:
        if (isWritable)
            view.undo();
        return isWritable;
    case TextEditing::redo:
        if (isWritable)
            view.redo();
        return isWritable;
    case TextEditing::remove:
        if (isWritable && hasSelection(view))
            removeSelection(view);
        return isWritable;
    case TextEditing::copy:
        copy(view);
        return true;
    case TextEditing::paste:
        if (isWritable)
            paste(QPointer(&view));
        return isWritable;
    case TextEditing::cut:
        if (isWritable && copy(view))
            removeSelection(view);
        return isWritable;
    case TextEditing::selectAll:
        view.selectAll();
        return true;
    }
    return false;
}

template <class View>
void showMenu(View &view, const QPoint &at)
{
    auto menu = MenuPresenter::makeMenu();
    const auto add = [&menu, &view](Str title, TextEditing editing) {
        QAction *item = menu->addAction(MenuPresenter::literalTitle(Localization::shared().t(title)), &view,
                                        [&view, editing] { performIn(editing, view); });
        item->setEnabled(canPerformIn(editing, view));
    };
    const bool isWritable = !view.isReadOnly();
    if (isWritable) {
        add(Str::menuUndo, TextEditing::undo);
        add(Str::menuRedo, TextEditing::redo);
        menu->addSeparator();
        add(Str::menuCut, TextEditing::cut);
    }
    add(Str::menuCopy, TextEditing::copy);
    if (isWritable) {
        add(Str::menuPaste, TextEditing::paste);
        add(Str::menuDelete, TextEditing::remove);
    }
    menu->addSeparator();
    add(Str::menuSelectAll, TextEditing::selectAll);
    MenuPresenter::popUp(std::move(menu), view, at);
}

} // namespace

bool perform(TextEditing editing, QWidget &textView)
{
    if (auto *view = qobject_cast<QPlainTextEdit *>(&textView))
        return performIn(editing, *view);
    if (auto *view = qobject_cast<QTextEdit *>(&textView))
        return performIn(editing, *view);
    if (auto *view = qobject_cast<QLineEdit *>(&textView))
        return performIn(editing, *view);
    return false;
}

bool canPerform(TextEditing editing, const QWidget &textView)
{
    if (const auto *view = qobject_cast<const QPlainTextEdit *>(&textView))
        return canPerformIn(editing, *view);
    if (const auto *view = qobject_cast<const QTextEdit *>(&textView))
        return canPerformIn(editing, *view);
    if (const auto *view = qobject_cast<const QLineEdit *>(&textView))
        return canPerformIn(editing, *view);
    return false;
}

bool isMeantForMenus(const QKeyEvent &event)
{
    return event.modifiers().testFlag(Qt::AltModifier) && !event.text().isEmpty() &&
           event.text().front().isPrint();
}

bool pastesPrimarySelection(const QMouseEvent &event)
{
    return event.type() == QEvent::MouseButtonRelease && event.button() == Qt::MiddleButton;
}

void showEditMenu(QTextEdit &textView, const QPoint &at)
{
    showMenu(textView, at);
}

void showEditMenu(QPlainTextEdit &textView, const QPoint &at)
{
    showMenu(textView, at);
}

void showEditMenu(QLineEdit &textView, const QPoint &at)
{
    showMenu(textView, at);
}

} // namespace tovi
