// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include <QWidget>

namespace tovi {

class FormRow;

/// A header over a rounded group of rows with thin lines between them.
class FormSection : public QWidget
{
    Q_OBJECT

public:
    /// Without a title there is no header.
    explicit FormSection(const QString &title = {}, QWidget *parent = nullptr);

    FormRow *addRow(const QString &title, QWidget *control);
    /// A row of small secondary text that wraps; a control, if there is one, stands at its end or below.
    void addHint(const QString &text, QWidget *control = nullptr);
    /// Any widget as a row, with the usual room around it.
    void addWidget(QWidget *widget);

private:
    void alignFields();

    QWidget *m_group;
    std::vector<FormRow *> m_fieldRows; ///< with a text field
};

} // namespace tovi
