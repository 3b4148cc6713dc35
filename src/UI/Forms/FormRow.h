// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QBoxLayout;

namespace tovi {

class FormLabel;
class FormLine;

/// One line of a section: a title, optionally a caption under it, and a control at the end, or below where
/// that would squeeze them.
class FormRow : public QWidget
{
    Q_OBJECT

public:
    /// The control, which the row takes, gets the title as its accessible name; none is allowed.
    FormRow(const QString &title, QWidget *control, QWidget *parent = nullptr);

    /// The room in points for the title beside a control that may take the rest; at least the title's own.
    int titleWidth() const;
    void setTitleRoom(int width);
    /// Empty: none.
    void setCaption(const QString &text);
    /// Lines with a warning sign under the row; empty: none.
    void setWarnings(const QStringList &texts);
    /// Another control behind the one at the end.
    void addControl(QWidget *control);

private:
    FormLabel *m_title;
    FormLabel *m_caption = nullptr;
    FormLine *m_line;
    QBoxLayout *m_warnings;
    QStringList m_warningTexts;
};

} // namespace tovi
