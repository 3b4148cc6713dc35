// SPDX-License-Identifier: MIT
#include "UI/EditableTextView.h"

#include <utility>

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextDocument>
#include <QWheelEvent>

#include "UI/OverlayScrollBar.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

constexpr int inset = 2; // points

} // namespace

EditableTextView::EditableTextView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    OverlayScrollBar::install(*this);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(inset);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        if (m_isShowing || isReadOnly())
            return;
        // The plain text of a document has lost its no-break spaces.
        m_text = document()
                     ->toRawText()
                     .replace(QChar::ParagraphSeparator, u'\n')
                     .replace(QChar::LineSeparator, u'\n');
        emit edited(m_text);
    });
}

QString EditableTextView::shown(const QString &text)
{
    if (text.size() <= longestText)
        return text;
    const bool cutsCharacter = text[longestText - 1].isHighSurrogate();
    return text.first(longestText - (cutsCharacter ? 1 : 0));
}

void EditableTextView::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_isShowing = true;
    const bool isCut = text.size() > longestText;
    setPlainText(isCut ? shown(text) + QChar(0x2026) : text);
    setReadOnly(isCut);
    m_isShowing = false;
}

void EditableTextView::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && (event->modifiers() & Qt::ShiftModifier)) {
        insertPlainText(QStringLiteral("\n"));
        ensureCursorVisible();
    } else if (isReturn) {
        emit submitted();
    } else if (event->matches(QKeySequence::Paste)) {
        perform(TextEditing::paste, *this);
    } else if (isMeantForMenus(*event)) {
        event->ignore();
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void EditableTextView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!pastesPrimarySelection(*event))
        QPlainTextEdit::mouseReleaseEvent(event);
}

void EditableTextView::contextMenuEvent(QContextMenuEvent *event)
{
    showEditMenu(*this, event->pos());
}

void EditableTextView::wheelEvent(QWheelEvent *event)
{
    // A bar that is disabled, as there is nothing to scroll, would keep the event from the view behind.
    if (verticalScrollBar()->isEnabled())
        QPlainTextEdit::wheelEvent(event);
    else
        event->ignore();
}

void EditableTextView::insertFromMimeData(const QMimeData *source)
{
    if (source->hasText())
        insertPlainText(source->text());
}

} // namespace tovi
