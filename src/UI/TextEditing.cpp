// SPDX-License-Identifier: MIT
#include "UI/TextEditing.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>
#include <qcorofuture.h>
#include <qcorotask.h>

#include "Platform/Pasteboard.h"
#include "Platform/PasteboardQueue.h"
#include "UI/EditableTextView.h"

namespace tovi {

namespace {

constexpr std::chrono::seconds readLimit{1};

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
bool performIn(TextEditing editing, View &view)
{
    const bool isWritable = !view.isReadOnly();
    switch (editing) {
    case TextEditing::copy:
        view.copy();
        return true;
    case TextEditing::paste:
        if (isWritable)
            paste(QPointer(&view));
        return isWritable;
    case TextEditing::cut:
        if (isWritable)
            view.cut();
        return isWritable;
    case TextEditing::selectAll:
        view.selectAll();
        return true;
    }
    return false;
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

} // namespace tovi
