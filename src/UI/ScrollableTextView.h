// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QTextEdit>

namespace tovi {

/// A text whose parts have their own fonts and colours.
struct AttributedText
{
    struct Run
    {
        QString text;
        QFont font;
        QColor color;
        int gap = 0; ///< points; for the line that the text ends, if it is an empty one between others
        bool operator==(const Run &) const = default;
    };
    QList<Run> runs;

    /// Starts a new line, below a gap of `spacing` points, where there is text already. An empty text adds
    /// nothing.
    void append(const QString &appended, const QFont &font, const QColor &color, double spacing = 0);
    QString plainText() const;
};

/// Shows a text that grows: what is there already keeps its place and its selection. Lines are found anew
/// only at the end, so a long text that arrives in many pieces costs no more than a short one for each.
class ScrollableTextView final : public QTextEdit
{
    Q_OBJECT

public:
    explicit ScrollableTextView(QWidget *parent = nullptr);

    void setAttributedText(const AttributedText &text);
    /// As it reads: where the view breaks a long paragraph for itself there is no line break.
    QString selectedText() const;

signals:
    void painted();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;

private:
    void display(const AttributedText &text, qsizetype from);
    void appendRun(QStringView text, const AttributedText::Run &run);
    void removeTail(qsizetype count);
    void splitLongParagraph();
    void scrollToEndLater();

    AttributedText m_text;
    QString m_plain; ///< of m_text
    int m_wrapWidth = 0;
    bool m_isScrollPending = false;
};

} // namespace tovi
