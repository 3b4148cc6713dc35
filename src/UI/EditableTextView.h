// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

namespace tovi {

/// A plain-text editor: Return submits, Shift-Return starts a new line.
class EditableTextView final : public QPlainTextEdit
{
    Q_OBJECT

public:
    /// Longer texts are shown cut and cannot be edited: a widget that lays out all of a huge text would
    /// stand still.
    static constexpr qsizetype longestText = 200'000; // UTF-16 units
    /// As much of a text as is shown.
    static QString shown(const QString &text);

    explicit EditableTextView(QWidget *parent = nullptr);

    /// Shows a text; one that is shown already keeps caret, selection and undo history.
    void setText(const QString &text);

signals:
    /// The user changed the text.
    void edited(const QString &text);
    void submitted();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    QString m_text;
    bool m_isShowing = false;
};

} // namespace tovi
