// SPDX-License-Identifier: MIT
#include "UI/Forms/FormView.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QSignalBlocker>

#include "Platform/DispatchQueue.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormRow.h"
#include "UI/Forms/FormSection.h"
#include "UI/Forms/FormSlider.h"
#include "UI/Forms/Picker.h"
#include "UI/Forms/TextFrame.h"
#include "UI/Forms/ToggleSwitch.h"
#include "UI/OverlayScrollBar.h"

namespace tovi {

namespace {

constexpr int margin = 20;

} // namespace

FormView::FormView(QWidget *parent)
    : QScrollArea(parent)
    , m_column(nullptr)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    OverlayScrollBar::install(*this);
    auto *content = new QWidget;
    m_column = new QVBoxLayout(content);
    m_column->setContentsMargins(margin, 16, margin - OverlayScrollBar::width, margin);
    m_column->setSpacing(16);
    // Rows keep their heights; what is left over stays below.
    m_column->addStretch(1);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

FormSection *FormView::addSection(const QString &title)
{
    auto *section = new FormSection(title);
    addWidget(section);
    return section;
}

void FormView::addWidget(QWidget *widget)
{
    m_column->insertWidget(m_column->count() - 1, widget);
}

void FormView::reveal(QWidget &widget)
{
    // Its new place is known only after the layouts have run, which they do later by themselves.
    if (widget.layout())
        widget.layout()->activate();
    m_column->activate();
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(this, &request);
    ensureWidgetVisible(&widget, 0, m_column->contentsMargins().bottom());
}

void FormView::revealFocus()
{
    QWidget *focus = widget()->focusWidget();
    if (!focus)
        return;
    // The toolkit shows no more of a text than its caret's line.
    auto *frame = qobject_cast<TextFrame *>(focus->parentWidget());
    ensureWidgetVisible(frame ? frame : focus);
}

void FormView::observe(Observable &observed)
{
    m_observed.push_back(observed.onWillChange([this] {
        if (std::exchange(m_isRefreshPending, true))
            return;
        asyncOnMain([self = QPointer(this)] {
            if (self)
                self->refresh();
        });
    }));
}

void FormView::follow(std::function<void()> refresh)
{
    refresh();
    m_refreshers.push_back(std::move(refresh));
}

void FormView::refresh()
{
    m_isRefreshPending = false;
    for (const auto &refresher : m_refreshers)
        refresher();
}

FormRow *FormView::addToggle(FormSection &section, const QString &title, Published<bool> &field)
{
    auto *toggle = new ToggleSwitch;
    FormRow *row = section.addRow(title, toggle);
    follow([toggle, &field] {
        const QSignalBlocker blocker(toggle);
        toggle->setChecked(field);
        toggle->update();
    });
    connect(toggle, &ToggleSwitch::toggled, this, [&field](bool checked) { field = checked; });
    return row;
}

FormRow *FormView::addPicker(FormSection &section, const QString &title, const QList<Choice> &choices,
                             Published<QString> &field)
{
    auto *picker = new Picker;
    for (const Choice &choice : choices)
        picker->addEntry(choice.title, choice.tag);
    FormRow *row = section.addRow(title, picker);
    follow([picker, &field] { picker->setTag(field); });
    picker->onPick([&field](const QString &tag) { field = tag; });
    return row;
}

FormRow *FormView::addSlider(FormSection &section, const QString &title, const Range &range,
                             Published<double> &field)
{
    auto *slider = new FormSlider(range.minimum, range.maximum, range.step);
    auto *value = new FormLabel(FormLabel::Role::value);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setMinimumWidth(34);
    FormRow *row = section.addRow(title, slider);
    row->addControl(value);
    follow([slider, value, &field] {
        slider->show(field);
        value->setText(QString::number(qRound(std::clamp<double>(field, -9999, 9999))));
    });
    slider->onMove([&field](int moved) { field = moved; });
    return row;
}

} // namespace tovi
