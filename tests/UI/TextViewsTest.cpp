// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>
#include <gtest/gtest.h>

#include "Support/TestPlatform.h"
#include "UI/EditableTextView.h"
#include "UI/ScrollableTextView.h"
#include "UI/TextHeightCache.h"

namespace tovi {
namespace {

QFont font(int pixels = 15)
{
    QFont font;
    font.setPixelSize(pixels);
    return font;
}

AttributedText plain(const QString &text)
{
    AttributedText attributed;
    attributed.append(text, font(), Qt::black);
    return attributed;
}

QString words(int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QStringLiteral("word%1 ").arg(i);
    return text;
}

TEST(TextHeightCacheTest, MeasuresWhatTheViewsShow)
{
    const auto height = [](const QString &text, double width) {
        return TextHeightCache::height(text, font(), width);
    };
    EXPECT_EQ(height(QString(), 300), 0);
    const double line = height(QStringLiteral("a"), 300);
    EXPECT_GE(line, 15);
    EXPECT_EQ(height(QStringLiteral("a\n\nb"), 300), 3 * line);
    EXPECT_EQ(height(words(40), 300.2), height(words(40), 300.9));
    // Parts of a long paragraph are joined at whole lines.
    for (const QString &text :
         {words(3000), QString(20'000, u'W'), QString(20'000, u'字'), QString(9000, u'א')}) {
        ScrollableTextView view;
        view.resize(300, 100);
        view.show();
        view.setAttributedText(plain(text));
        drainMainQueue();
        const double shown = view.document()->size().height() - 4;
        EXPECT_NEAR(height(text, view.viewport()->width() - 4), shown, shown * 0.06);
    }
    // Nobody waits for the height of what is too high anyway.
    const double much = TextHeightCache::height(QString(16 * 1024 * 1024, u'a'), font(), 300, 480);
    EXPECT_GT(much, 480);
    EXPECT_LT(much, 20'000);
}

TEST(ScrollableTextViewTest, GrowingTextKeepsSelectionAndPlace)
{
    ScrollableTextView view;
    view.resize(300, 100);
    view.show();
    QString text = words(200);
    view.setAttributedText(plain(text));
    drainMainQueue();
    const QScrollBar *bar = view.verticalScrollBar();
    EXPECT_EQ(bar->value(), 0) << "a whole text is read from its beginning";
    view.verticalScrollBar()->setValue(bar->maximum() - 10);
    text += words(50);
    view.setAttributedText(plain(text));
    drainMainQueue();
    EXPECT_EQ(bar->value(), bar->maximum()) << "a reader at the end stays there";

    QTextCursor cursor = view.textCursor();
    cursor.movePosition(QTextCursor::End);
    cursor.setPosition(cursor.position() - 4, QTextCursor::KeepAnchor);
    view.setTextCursor(cursor);
    const QString selected = view.textCursor().selectedText();
    view.verticalScrollBar()->setValue(10);
    text += words(50);
    view.setAttributedText(plain(text));
    drainMainQueue();
    EXPECT_EQ(view.textCursor().selectedText(), selected);
    EXPECT_EQ(bar->value(), 10);

    // A tail that goes, and one that comes instead, move nothing else.
    view.setAttributedText(plain(text.trimmed()));
    AttributedText noted = plain(text.trimmed());
    noted.append(QStringLiteral("note"), font(10), Qt::red, 6);
    view.setAttributedText(noted);
    drainMainQueue();
    EXPECT_EQ(view.textCursor().selectedText(), selected);
    EXPECT_EQ(bar->value(), 10);

    // However the lines end, and wherever a character was cut.
    for (const QString &end : {QStringLiteral("z\r\n"), QStringLiteral("z\r"), QStringLiteral("z\xd83d")}) {
        view.setAttributedText(plain(text + end));
        view.setAttributedText(plain(text + u'z'));
        EXPECT_EQ(view.toPlainText().right(7), text.right(6) + u'z');
    }

    // Other beginnings replace the whole, further lines are appended with their own fonts.
    AttributedText other = plain(QStringLiteral("other"));
    other.append(QStringLiteral("note"), font(10), Qt::red, 6);
    view.setAttributedText(other);
    EXPECT_EQ(view.toPlainText(), QStringLiteral("other\n\nnote"));
    EXPECT_EQ(view.document()->lastBlock().begin().fragment().charFormat().font().pixelSize(), 10);
    EXPECT_FALSE(view.textCursor().hasSelection());
    other = {};
    view.setAttributedText(other);
    EXPECT_EQ(view.toPlainText(), QString());
}

TEST(ScrollableTextViewTest, ALongParagraphIsCopiedAsItIs)
{
    for (const QString &text : {words(2000), QString(9000, u'字'), words(900) + u'\n' + words(5)}) {
        ScrollableTextView view;
        view.resize(300, 200);
        view.show();
        for (qsizetype end = 0; end < text.size();) {
            end = std::min(text.size(), end + 700);
            view.setAttributedText(plain(text.first(end)));
        }
        EXPECT_GT(view.document()->blockCount(), 2) << "it is laid out as one";
        view.setAttributedText(plain(text.chopped(3500)));
        EXPECT_EQ(view.toPlainText().remove(u'\n').size(), text.chopped(3500).remove(u'\n').size());
        view.setAttributedText(plain(text));
        const auto copied = [&] {
            view.copy();
            return QApplication::clipboard()->text();
        };
        view.selectAll();
        EXPECT_EQ(copied(), text);
        QTextCursor cursor = view.textCursor();
        cursor.setPosition(1500);
        cursor.setPosition(5000, QTextCursor::KeepAnchor);
        view.setTextCursor(cursor);
        EXPECT_TRUE(text.contains(copied()));
        view.resize(200, 200);
        drainMainQueue();
        view.selectAll();
        EXPECT_EQ(copied(), text);
    }
}

TEST(EditableTextViewTest, ReturnSubmitsAndShiftReturnBreaksTheLine)
{
    TestPlatform platform;
    EditableTextView view;
    int submissions = 0;
    QStringList edits;
    QObject::connect(&view, &EditableTextView::submitted, &view, [&] { ++submissions; });
    QObject::connect(&view, &EditableTextView::edited, &view, [&](const QString &text) {
        edits << text;
        view.setText(text); // as the model's owner does
    });
    const QString text = QStringLiteral("a\u00a0b\r\nc");
    view.setText(text);
    EXPECT_TRUE(edits.isEmpty());
    const auto press = [&](int key, Qt::KeyboardModifiers modifiers, const QString &typed = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, typed);
        QApplication::sendEvent(&view, &event);
    };
    press(Qt::Key_Return, Qt::NoModifier);
    press(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(submissions, 2);
    EXPECT_TRUE(edits.isEmpty());
    press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(edits.takeLast(), QStringLiteral("\na\u00a0b\nc"));
    press(Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
    EXPECT_EQ(edits.takeLast(), QStringLiteral("\nxa\u00a0b\nc"));
    view.undo();
    EXPECT_FALSE(edits.isEmpty());
    platform.pasteboard().put(QStringLiteral("p"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(waitUntil([&] { return edits.last().contains(u'p'); }));

    // Its menu asks nobody before it opens.
    platform.pasteboard().hangs = true;
    const int reads = platform.pasteboard().reads;
    view.show();
    QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
    QApplication::sendEvent(view.viewport(), &menuEvent);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().first()->text(), QStringLiteral("Undo"));
    EXPECT_EQ(platform.pasteboard().reads, reads);
    menu->close();
    platform.pasteboard().hangs = false;

    view.setText(QString(EditableTextView::longestText + 1, u'a'));
    EXPECT_TRUE(view.isReadOnly());
    view.setText(text);
    EXPECT_FALSE(view.isReadOnly());
}

} // namespace
} // namespace tovi
