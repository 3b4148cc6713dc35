// SPDX-License-Identifier: MIT
#include "UI/TextEditing.h"

#include <QLineEdit>
#include <QMenu>
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
    view.insertPlainText(text.left(EditableTextView::longestText));
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

template <class View>
bool performIn(TextEditing editing, View &view)
{
    const bool isWritable = !view.isReadOnly();
    switch (editing) {
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
    const auto add = [&menu, &view](Str title, bool isEnabled, const std::function<void()> &action) {
        QAction *item =
            menu->addAction(MenuPresenter::literalTitle(Localization::shared().t(title)), &view, action);
        item->setEnabled(isEnabled);
    };
    const auto addEditing = [&add, &view](Str title, bool isEnabled, TextEditing editing) {
        add(title, isEnabled, [&view, editing] { performIn(editing, view); });
    };
    const bool isWritable = !view.isReadOnly();
    const bool hasSelection = view.textCursor().hasSelection();
    if (isWritable) {
        add(Str::menuUndo, view.document()->isUndoAvailable(), [&view] { view.undo(); });
        add(Str::menuRedo, view.document()->isRedoAvailable(), [&view] { view.redo(); });
        menu->addSeparator();
        addEditing(Str::menuCut, hasSelection, TextEditing::cut);
    }
    addEditing(Str::menuCopy, hasSelection, TextEditing::copy);
    if (isWritable) {
        addEditing(Str::menuPaste, true, TextEditing::paste);
        add(Str::menuDelete, hasSelection, [&view] { removeSelection(view); });
    }
    menu->addSeparator();
    addEditing(Str::menuSelectAll, !view.document()->isEmpty(), TextEditing::selectAll);
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

void showEditMenu(QTextEdit &textView, const QPoint &at)
{
    showMenu(textView, at);
}

void showEditMenu(QPlainTextEdit &textView, const QPoint &at)
{
    showMenu(textView, at);
}

} // namespace tovi
