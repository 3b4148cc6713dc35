// SPDX-License-Identifier: MIT
#include "UI/Forms/FormRow.h"

#include <QBoxLayout>

#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormLine.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/SymbolView.h"

namespace tovi {

namespace {

QWidget *makeWarning(const QString &text)
{
    auto *line = new QWidget;
    auto *row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(5);
    auto *symbol = new SymbolView(12);
    symbol->setSymbol(QStringLiteral("exclamationmark.triangle.fill"), SymbolView::Tint::orange);
    auto *label = new FormLabel(FormLabel::Role::warning, text);
    symbol->setFixedHeight(label->fontMetrics().height()); // beside the first line
    row->addWidget(symbol, 0, Qt::AlignTop);
    row->addWidget(label, 1);
    return line;
}

} // namespace

FormRow::FormRow(const QString &title, QWidget *control, QWidget *parent)
    : QWidget(parent)
    , m_title(new FormLabel(FormLabel::Role::title, title))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(FormStyle::rowPadding, 6, FormStyle::rowPadding, 6);
    column->setSpacing(4);
    m_line = new FormLine;
    m_line->addText(m_title);
    if (title.isEmpty())
        m_title->hide();
    column->addLayout(m_line);
    m_warnings = new QVBoxLayout;
    m_warnings->setSpacing(3);
    column->addLayout(m_warnings);
    setMinimumHeight(FormStyle::rowHeight);
    if (control) {
        control->setAccessibleName(title);
        m_title->setBuddy(control); // screen readers know a choice by its value and by its label
        addControl(control);
    }
}

int FormRow::titleWidth() const
{
    return m_title->naturalWidth();
}

void FormRow::setTitleRoom(int width)
{
    m_line->setTextRoom(width);
}

void FormRow::setCaption(const QString &text)
{
    if (!m_caption) {
        m_caption = new FormLabel(FormLabel::Role::caption);
        m_line->addText(m_caption);
    }
    m_caption->setText(text);
    m_caption->setVisible(!text.isEmpty());
}

void FormRow::setWarnings(const QStringList &texts)
{
    if (std::exchange(m_warningTexts, texts) == texts)
        return;
    while (QLayoutItem *item = m_warnings->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const QString &text : texts)
        m_warnings->addWidget(makeWarning(text));
}

void FormRow::addControl(QWidget *control)
{
    m_line->addControl(control);
}

} // namespace tovi
