// SPDX-License-Identifier: MIT
// Runs on a real server: the toolkit knows no primary selection elsewhere.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>

#include "UI/EditableTextView.h"
#include "UI/Forms/FormTextField.h"

namespace tovi {
namespace {

void middleClick(QWidget &widget)
{
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const QPointF at(5, 5);
        QMouseEvent event(type, at, widget.mapToGlobal(at), Qt::MiddleButton,
                          type == QEvent::MouseButtonPress ? Qt::MiddleButton : Qt::NoButton, {});
        QApplication::sendEvent(&widget, &event);
    }
}

TEST(TextFields, NeverAskForThePrimarySelection)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("selected"), QClipboard::Selection);
    FormTextField field;
    EditableTextView view;
    middleClick(field);
    middleClick(*view.viewport());
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(view.toPlainText(), QString());
    QGuiApplication::clipboard()->clear(QClipboard::Selection);
}

} // namespace
} // namespace tovi
