// SPDX-License-Identifier: MIT
#include "UI/Forms/FittedView.h"

#include <QEvent>
#include <QLayout>

namespace tovi {

FittedView::FittedView(int width, QWidget *parent)
    : QWidget(parent)
{
    setFixedWidth(width);
}

bool FittedView::event(QEvent *event)
{
    if (layout() && (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Polish))
        setFixedHeight(layout()->totalHeightForWidth(width()));
    return QWidget::event(event);
}

} // namespace tovi
