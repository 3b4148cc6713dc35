// SPDX-License-Identifier: MIT
#include "UI/LogoView.h"

#include <QIcon>
#include <QPainter>

namespace tovi {

LogoView::LogoView(int side, QWidget *parent)
    : QWidget(parent)
{
    setFixedSize(side, side);
}

void LogoView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    static const QIcon logo(QStringLiteral(":/tovi/ToviLogo.svg"));
    logo.paint(&painter, rect());
}

} // namespace tovi
