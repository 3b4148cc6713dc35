// SPDX-License-Identifier: MIT
#include "UI/Forms/FormSection.h"

#include <algorithm>

#include <QBoxLayout>
#include <QPainter>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormLine.h"
#include "UI/Forms/FormRow.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/FormTextField.h"

namespace tovi {

namespace {

class Group final : public QWidget
{
public:
    Group()
    {
        auto *column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        FormStyle::paintGroup(painter, *this);
        const double line = FormStyle::hairline(*this);
        const double ratio = devicePixelRatioF();
        bool isFirst = true;
        for (int i = 0; i < layout()->count(); ++i) {
            const QWidget *row = layout()->itemAt(i)->widget();
            if (!row || row->isHidden())
                continue;
            // On whole device pixels: a blurred line looks like two.
            const double y = qRound(row->y() * ratio) / ratio;
            if (!isFirst)
                painter.fillRect(QRectF(line, y, width() - 2 * line, line),
                                 SystemColor::separator(palette()));
            isFirst = false;
        }
    }
};

/// Gives a row's content the usual room.
QWidget *padded(QWidget *widget)
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(FormStyle::rowPadding, 9, FormStyle::rowPadding, 9);
    line->addWidget(widget, 1);
    return row;
}

} // namespace

FormSection::FormSection(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_group(new Group)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    if (!title.isEmpty()) {
        auto *header = new FormLabel(FormLabel::Role::header, title);
        header->setContentsMargins(4, 0, 4, 0);
        column->addWidget(header);
        setAccessibleName(title);
    }
    column->addWidget(m_group);
    m_group->hide(); // while it is empty
}

FormRow *FormSection::addRow(const QString &title, QWidget *control)
{
    auto *row = new FormRow(title, control);
    m_group->layout()->addWidget(row);
    m_group->show();
    if (qobject_cast<FormTextField *>(control)) {
        m_fieldRows.push_back(row);
        alignFields();
    }
    return row;
}

void FormSection::alignFields()
{
    int widest = 0;
    for (const FormRow *row : m_fieldRows)
        widest = std::max(widest, row->titleWidth());
    for (FormRow *row : m_fieldRows)
        row->setTitleRoom(widest);
}

void FormSection::addHint(const QString &text, QWidget *control)
{
    auto *hint = new QWidget;
    auto *line = new FormLine;
    hint->setLayout(line);
    line->addText(new FormLabel(FormLabel::Role::caption, text));
    if (control)
        line->addControl(control);
    m_group->layout()->addWidget(padded(hint));
    m_group->show();
}

void FormSection::addWidget(QWidget *widget)
{
    m_group->layout()->addWidget(padded(widget));
    m_group->show();
}

} // namespace tovi
