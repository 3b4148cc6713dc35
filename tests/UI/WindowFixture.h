// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QScrollArea>
#include <QSet>
#include <gtest/gtest.h>

#include "Localization.h"
#include "Support/TestPlatform.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormSlider.h"
#include "UI/Forms/Picker.h"
#include "UI/Forms/SymbolView.h"
#include "UI/RegularWindow.h"

namespace tovi {

inline QString t(Str key)
{
    return Localization::shared().t(key);
}

inline void press(QWidget *widget, Qt::Key key)
{
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    }
}

/// What users see and reach in one of the program's windows.
class WindowTest : public testing::Test
{
protected:
    virtual RegularWindow *window() = 0;

    /// The visible one with this accessible name.
    template <class Widget>
    Widget *find(const QString &name)
    {
        for (Widget *widget : window()->findChildren<Widget *>()) {
            if (widget->isVisible() && (widget->accessibleName() == name))
                return widget;
        }
        return nullptr;
    }
    template <class Widget>
    Widget *find(Str name)
    {
        return find<Widget>(t(name));
    }
    FormButton *button(Str text)
    {
        for (FormButton *button : window()->findChildren<FormButton *>()) {
            if (button->isVisible() && button->text() == t(text))
                return button;
        }
        return nullptr;
    }
    FormButton *rowButton(Str text, Str row)
    {
        return find<FormButton>(t(text) + QStringLiteral(": ") + t(row));
    }
    QStringList symbols()
    {
        QStringList names;
        for (const SymbolView *view : window()->findChildren<SymbolView *>()) {
            if (view->isVisible())
                names << view->symbol();
        }
        return names;
    }
    qsizetype count(Str text)
    {
        drainMainQueue();
        qsizetype found = 0;
        for (const FormLabel *label : window()->findChildren<FormLabel *>())
            found += label->isVisible() && label->text() == t(text);
        return found;
    }
    /// What does not fit into its place.
    std::string cutOff()
    {
        QStringList texts;
        for (const FormLabel *label : window()->findChildren<FormLabel *>()) {
            if (!label->isVisible())
                continue;
            const int height = label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                                          : label->sizeHint().height();
            const int width =
                label->wordWrap() ? label->minimumSizeHint().width() : label->sizeHint().width();
            if (label->height() < height || label->width() < width)
                texts << label->text();
        }
        for (const QWidget *control : window()->findChildren<QWidget *>()) {
            const auto *button = qobject_cast<const QAbstractButton *>(control);
            const auto *picker = qobject_cast<const Picker *>(control);
            if ((!button && !picker && !qobject_cast<const QLineEdit *>(control)) || !control->isVisible())
                continue;
            const QRect place(control->mapTo(window(), QPoint()), control->size());
            if (control->width() < control->minimumSizeHint().width() || place.left() < 0 ||
                place.right() >= window()->width())
                texts << (button   ? button->text()
                          : picker ? picker->shownTitle()
                                   : control->accessibleName());
        }
        for (const QScrollArea *area : window()->findChildren<QScrollArea *>()) {
            if (area->isVisible() && area->widget() && area->widget()->width() > area->viewport()->width())
                texts << QStringLiteral("wider than its place");
        }
        return texts.join(QLatin1Char('\n')).toStdString();
    }

    /// What Tab does not come to; of the panes' items only the selected one is to be reached.
    qsizetype countUnreachable()
    {
        QSet<QWidget *> left;
        for (QWidget *widget : window()->findChildren<QWidget *>()) {
            const auto *button = qobject_cast<QAbstractButton *>(widget);
            const bool isControl = button || qobject_cast<Picker *>(widget) ||
                                   qobject_cast<FormSlider *>(widget) || qobject_cast<QLineEdit *>(widget) ||
                                   qobject_cast<QListView *>(widget);
            if (isControl && widget->isVisible() && widget->isEnabled() &&
                !(button && button->autoExclusive() && !button->isChecked()))
                left << widget;
        }
        for (qsizetype presses = left.size() + 1; presses > 0; --presses) {
            left.remove(window()->focusWidget());
            press(window()->focusWidget(), Qt::Key_Tab);
        }
        return left.size();
    }

    TestPlatform platform;
};

} // namespace tovi
