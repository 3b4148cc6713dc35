// SPDX-License-Identifier: MIT
#include "UI/Forms/TextFrame.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "UI/EditableTextView.h"
#include "UI/Forms/FormStyle.h"
#include "UI/OverlayScrollBar.h"

namespace tovi {

namespace {

constexpr QMargins narrowMargins(4, 4, 2, 4);
constexpr QMargins wideMargins(10, 9, 2, 9);
/// UTF-16 units; what is longer needs more than a screen.
constexpr qsizetype measuredText = 20'000;

} // namespace

TextFrame::TextFrame(EditableTextView *text, int height, Margins margins, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(margins == Margins::wide ? wideMargins : narrowMargins);
    column->addWidget(text);
    text->installEventFilter(this);
    setFixedHeight(height);
}

int TextFrame::heightFor(const QString &text, int width) const
{
    const QMargins margins = layout()->contentsMargins();
    const int inset = qCeil(m_text->document()->documentMargin());
    const int room = width - margins.left() - margins.right() - OverlayScrollBar::width - 2 * inset;
    const QRect bounds =
        m_text->fontMetrics().boundingRect(QRect(0, 0, room, 0), Qt::TextWordWrap, text.left(measuredText));
    return bounds.height() + margins.top() + margins.bottom() + 4 * inset;
}

bool TextFrame::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(watched, event);
}

void TextFrame::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    FormStyle::paintField(painter, *this, m_text->hasFocus());
}

} // namespace tovi
