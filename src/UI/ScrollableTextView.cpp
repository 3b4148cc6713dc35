// SPDX-License-Identifier: MIT
#include "UI/ScrollableTextView.h"

#include <cmath>

#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextFrame>
#include <QTextLayout>

#include "UI/OverlayScrollBar.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

constexpr int inset = 2;           // points
constexpr int followDistance = 12; // points
// A paragraph is laid out as a whole at each change of it. A longer one continues in a block of its own, from
// the beginning of a line.
constexpr int longestBlock = 2000;
constexpr int continues = 1; // state of a block that the next one continues

} // namespace

void AttributedText::append(const QString &appended, const QFont &font, const QColor &color, double spacing)
{
    if (appended.isEmpty())
        return;
    // A document counts every line end as one character.
    QString text = appended;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n').replace(QChar::ParagraphSeparator, u'\n');
    const auto add = [this, &color](const QString &part, const QFont &own) {
        if (!runs.isEmpty() && !runs.last().gap && runs.last().font == own && runs.last().color == color)
            runs.last().text += part;
        else
            runs.append({part, own, color, 0});
    };
    if (!runs.isEmpty()) {
        add(QStringLiteral("\n"), font);
        if (spacing > 0) {
            QFont gap = font;
            gap.setPixelSize(std::max(1, int(std::lround(spacing))));
            runs.append({QStringLiteral("\n"), gap, color, int(std::lround(spacing))});
        }
    }
    add(text, font);
}

QString AttributedText::plainText() const
{
    QString plain;
    for (const Run &run : runs)
        plain += run.text;
    return plain;
}

ScrollableTextView::ScrollableTextView(QWidget *parent)
    : QTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setCursorWidth(0);
    setUndoRedoEnabled(false);
    OverlayScrollBar::install(*this);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(inset);
}

void ScrollableTextView::setAttributedText(const AttributedText &text)
{
    if (text.runs == m_text.runs)
        return;
    const QString plain = text.plainText();
    const QScrollBar *bar = verticalScrollBar();
    const int position = bar->value();
    const bool isAtEnd = position >= bar->maximum() - followDistance;
    const auto common = std::mismatch(plain.begin(), plain.end(), m_plain.begin(), m_plain.end()).first;
    qsizetype kept = common - plain.begin();
    if (kept > 0 && plain.at(kept - 1).isHighSurrogate())
        --kept; // a character is kept whole or not at all
    // Most of it must be the same text in the same colours: else it is another one.
    const bool isSame = kept > 0 && kept >= m_plain.size() / 2 && !text.runs.isEmpty() &&
                        m_text.runs.first().color == text.runs.first().color &&
                        m_text.runs.first().font == text.runs.first().font;
    if (isSame)
        removeTail(m_plain.size() - kept);
    else
        kept = 0;
    m_text = text;
    m_plain = plain;
    display(text, kept);
    // A text that comes whole is read from its beginning.
    if (!isSame)
        verticalScrollBar()->setValue(0);
    else if (isAtEnd)
        scrollToEndLater();
    else
        verticalScrollBar()->setValue(position);
}

void ScrollableTextView::display(const AttributedText &text, qsizetype from)
{
    m_wrapWidth = viewport()->width();
    // Neither end of the selection moves on with text that is appended to it.
    QTextCursor ends[] = {QTextCursor(document()), QTextCursor(document())};
    ends[0].setPosition(textCursor().anchor());
    ends[1].setPosition(textCursor().position());
    for (QTextCursor &end : ends)
        end.setKeepPositionOnInsert(true);
    if (from == 0) {
        document()->clear();
        QTextFrameFormat frame = document()->rootFrame()->frameFormat();
        frame.setBottomMargin(0);
        document()->rootFrame()->setFrameFormat(frame);
    }
    qsizetype start = 0;
    for (const AttributedText::Run &run : text.runs) {
        const qsizetype skipped = std::clamp(from - start, qsizetype(0), run.text.size());
        if (skipped < run.text.size())
            appendRun(QStringView(run.text).sliced(skipped), run);
        start += run.text.size();
    }
    QTextCursor selection = textCursor();
    selection.setPosition(ends[0].position());
    selection.setPosition(ends[1].position(), QTextCursor::KeepAnchor);
    setTextCursor(selection);
}

void ScrollableTextView::appendRun(QStringView text, const AttributedText::Run &run)
{
    QTextCharFormat format;
    format.setFont(run.font);
    format.setForeground(run.color);
    QTextCursor end(document());
    if (run.gap) {
        end.movePosition(QTextCursor::End);
        QTextBlockFormat gap;
        gap.setLineHeight(run.gap, QTextBlockFormat::FixedHeight);
        end.setBlockFormat(gap);
        end.insertBlock(QTextBlockFormat(), format);
        return;
    }
    // In parts, so that a paragraph that comes whole is split as well.
    while (!text.isEmpty()) {
        end.movePosition(QTextCursor::End);
        end.setBlockCharFormat(format);
        end.insertText(text.first(std::min(text.size(), qsizetype(longestBlock))).toString(), format);
        text = text.sliced(std::min(text.size(), qsizetype(longestBlock)));
        splitLongParagraph();
    }
}

void ScrollableTextView::removeTail(qsizetype count)
{
    while (count > 0) {
        const QTextBlock last = document()->lastBlock();
        const qsizetype length = last.length() - 1; // without its end
        QTextCursor cursor(document());
        cursor.movePosition(QTextCursor::End);
        if (count <= length) {
            cursor.setPosition(cursor.position() - int(count), QTextCursor::KeepAnchor);
            cursor.removeSelectedText();
            return;
        }
        // The break before a block that continues a paragraph is none of the text.
        const bool continuesIt = last.previous().userState() == continues;
        count -= length + (continuesIt ? 0 : 1);
        cursor.setPosition(last.position() - 1, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        document()->lastBlock().setUserState(-1);
    }
}

void ScrollableTextView::splitLongParagraph()
{
    for (;;) {
        const QTextBlock last = document()->lastBlock();
        if (last.length() <= longestBlock)
            return;
        document()->documentLayout()->blockBoundingRect(last); // lays it out
        const QTextLayout *layout = last.layout();
        // The last line may still grow; the one before it is also kept, for a word may move up.
        const int line =
            std::min(layout->lineCount() - 2, layout->lineForTextPosition(longestBlock).lineNumber());
        if (line < 1)
            return;
        QTextCursor cursor(last);
        cursor.setPosition(last.position() + layout->lineAt(line).textStart());
        QTextBlockFormat direction = cursor.blockFormat();
        direction.setLayoutDirection(last.textDirection());
        cursor.insertBlock(direction, cursor.charFormat());
        QTextBlock before = cursor.block().previous();
        before.setUserState(continues);
        QTextCursor(before).setBlockFormat(direction);
    }
}

void ScrollableTextView::scrollToEndLater()
{
    if (std::exchange(m_isScrollPending, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isScrollPending = false;
            verticalScrollBar()->setValue(verticalScrollBar()->maximum());
        },
        Qt::QueuedConnection);
}

void ScrollableTextView::paintEvent(QPaintEvent *event)
{
    QTextEdit::paintEvent(event);
    emit painted();
}

void ScrollableTextView::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    // Where paragraphs were split depends on the width.
    const bool isSplit = document()->blockCount() > m_plain.count(u'\n') + 1;
    if (isSplit && viewport()->width() != m_wrapWidth)
        display(m_text, 0);
}

void ScrollableTextView::focusInEvent(QFocusEvent *event)
{
    // Who comes by keyboard selects by keyboard, and must see where.
    const bool isByKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    setCursorWidth(isByKey ? 1 : 0);
    QTextEdit::focusInEvent(event);
}

void ScrollableTextView::focusOutEvent(QFocusEvent *event)
{
    QTextEdit::focusOutEvent(event);
    setCursorWidth(0);
}

void ScrollableTextView::contextMenuEvent(QContextMenuEvent *event)
{
    showEditMenu(*this, event->pos());
}

QString ScrollableTextView::selectedText() const
{
    const QTextCursor selection = textCursor();
    QString text;
    for (QTextBlock block = document()->findBlock(selection.selectionStart());
         block.isValid() && block.position() < selection.selectionEnd(); block = block.next()) {
        const int from = std::max(selection.selectionStart() - block.position(), 0);
        const int to = std::min(selection.selectionEnd() - block.position(), block.length() - 1);
        text += block.text().mid(from, to - from);
        const bool goesOn = selection.selectionEnd() >= block.position() + block.length();
        if (goesOn && block.userState() != continues)
            text += u'\n';
    }
    return text.replace(QChar::LineSeparator, u'\n');
}

QMimeData *ScrollableTextView::createMimeDataFromSelection() const
{
    auto *data = new QMimeData;
    data->setText(selectedText());
    return data;
}

} // namespace tovi
