// SPDX-License-Identifier: MIT
#include "UI/RegularWindow.h"

#include <QCloseEvent>
#include <QIcon>
#include <QLayout>
#include <QScreen>

namespace tovi {

RegularWindow::RegularWindow(Style style)
{
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    if (style == Style::resizable)
        flags |= Qt::WindowMinimizeButtonHint;
    else
        layout()->setSizeConstraint(QLayout::SetFixedSize);
    setWindowFlags(flags);
    setWindowIcon(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")));
}

void RegularWindow::makeKeyAndOrderFront()
{
    if (!isVisible()) {
        ensurePolished();
        const QRect room = screen()->availableGeometry();
        const QSize size = layout()->sizeConstraint() == QLayout::SetFixedSize ? sizeHint() : this->size();
        move(room.center() - QPoint(size.width(), size.height()) / 2);
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void RegularWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (onClose)
        onClose();
}

} // namespace tovi
