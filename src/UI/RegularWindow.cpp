// SPDX-License-Identifier: MIT
#include "UI/RegularWindow.h"

#include <algorithm>

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>

#include "UI/MainMenu.h"

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
    MainMenu::shared().install(*this);
    setWindowIcon(QIcon(QStringLiteral(":/tovi/ToviLogo.svg")));
}

void RegularWindow::makeKeyAndOrderFront()
{
    if (!isVisible()) {
        ensurePolished();
        const QScreen *pointed = QGuiApplication::screenAt(QCursor::pos());
        const QRect room = (pointed ? pointed : screen())->availableGeometry();
        const QSize size = layout()->sizeConstraint() == QLayout::SetFixedSize ? sizeHint() : this->size();
        move(room.x() + std::max(0, (room.width() - size.width()) / 2),
             room.y() + std::max(0, (room.height() - size.height()) / 2));
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

void RegularWindow::keyPressEvent(QKeyEvent *event)
{
    // As in other programs; the toolkit knows Alt only.
    if (event->key() != Qt::Key_F10 || event->modifiers() || menuBar()->actions().isEmpty())
        QMainWindow::keyPressEvent(event);
    else
        menuBar()->setActiveAction(menuBar()->actions().constFirst());
}

} // namespace tovi
