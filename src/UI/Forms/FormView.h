// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <vector>

#include <QScrollArea>

#include "Platform/Observable.h"

class QBoxLayout;

namespace tovi {

class FormRow;
class FormSection;

/// A form: sections one under the other, scrolling when there is no room. Texts are looked up when it is
/// built, so a change of the interface language builds a new one.
class FormView : public QScrollArea
{
    Q_OBJECT

public:
    explicit FormView(QWidget *parent = nullptr);

    FormSection *addSection(const QString &title = {});
    void addWidget(QWidget *widget);

    /// After a change of the observed, all that was given to follow() runs on the next turn of the main
    /// queue, once for several changes.
    void observe(Observable &observed);
    /// Runs now and after changes.
    void follow(std::function<void()> refresh);

    /// Scrolls to a widget of addWidget() that has just changed its height.
    void reveal(QWidget &widget);
    /// Scrolls to the control with the keyboard.
    void revealFocus();

    /// Rows whose control shows a field and writes it through at once.
    FormRow *addToggle(FormSection &section, const QString &title, Published<bool> &field);
    struct Choice
    {
        QString title;
        QString tag;
    };
    FormRow *addPicker(FormSection &section, const QString &title, const QList<Choice> &choices,
                       Published<QString> &field);
    struct Range
    {
        int minimum;
        int maximum;
        int step;
    };
    FormRow *addSlider(FormSection &section, const QString &title, const Range &range,
                       Published<double> &field);

private:
    void refresh();

    QBoxLayout *m_column;
    std::vector<Subscription> m_observed;
    std::vector<std::function<void()>> m_refreshers;
    bool m_isRefreshPending = false;
};

} // namespace tovi
