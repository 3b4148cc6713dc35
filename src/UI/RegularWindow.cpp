// SPDX-License-Identifier: MIT
#include "UI/RegularWindow.h"

#include <algorithm>
#include <utility>

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>

#include "UI/Forms/FormView.h"
#include "UI/MainMenu.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

/// The nearest place where all of a frame is on the screen, or its beginning where it is too large.
QPoint placeWithin(const QRect &room, const QRect &frame)
{
    return {std::max(room.left(), std::min(frame.left(), room.right() + 1 - frame.width())),
            std::max(room.top(), std::min(frame.top(), room.bottom() + 1 - frame.height()))};
}

/// By which Alt opens a menu; other keyboards have F10.
bool opensMenu(const QKeyEvent &event, const QAction &title)
{
    return isMeantForMenus(event) && title.text().startsWith(event.text(), Qt::CaseInsensitive);
}

} // namespace

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

bool RegularWindow::isAsLargeAsItsContent() const
{
    return layout()->sizeConstraint() == QLayout::SetFixedSize;
}

void RegularWindow::makeKeyAndOrderFront()
{
    if (!isVisible()) {
        ensurePolished();
        if (centralWidget())
            centralWidget()->ensurePolished();
        const QScreen *pointed = QGuiApplication::screenAt(QCursor::pos());
        const QRect room = (pointed ? pointed : screen())->availableGeometry();
        shrinkInto(room, {});
        const QSize size = isAsLargeAsItsContent() ? sizeHint() : this->size();
        const QPoint corner((room.width() - size.width()) / 2, (room.height() - size.height()) / 2);
        move(placeWithin(room, QRect(room.topLeft() + corner, size)));
        m_isNew = true;
    }
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void RegularWindow::shrinkInto(const QRect &room, const QSize &frame)
{
    if (!isAsLargeAsItsContent())
        resize(size().boundedTo(room.size() - frame).expandedTo(minimumSize()));
}

bool RegularWindow::focusNextPrevChild(bool next)
{
    if (!QMainWindow::focusNextPrevChild(next))
        return false;
    // The toolkit does so only where the keyboard was in the same view before.
    for (QWidget *view = focusWidget(); view; view = view->parentWidget()) {
        if (auto *form = qobject_cast<FormView *>(view))
            form->revealFocus();
    }
    return true;
}

void RegularWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (!isVisible() || event->spontaneous() || !isAsLargeAsItsContent())
        return;
    // It grows and shrinks around its middle.
    const QSize change = event->size() - event->oldSize();
    move(placeWithin(screen()->availableGeometry(),
                     frameGeometry().translated(-change.width() / 2, -change.height() / 2)));
}

void RegularWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isActiveWindow())
        return;
    // Now that it has its frame.
    if (std::exchange(m_isNew, false)) {
        const QRect room = screen()->availableGeometry();
        const QSize frame = frameGeometry().size() - size();
        shrinkInto(room, frame);
        const QPoint place = placeWithin(room, QRect(pos(), size() + frame));
        if (place != pos())
            move(place);
    }
}

void RegularWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (onClose)
        onClose();
}

void RegularWindow::keyPressEvent(QKeyEvent *event)
{
    for (QAction *title : menuBar()->actions()) {
        // As in other programs; the toolkit knows Alt alone only, and marks in the titles.
        if ((event->key() == Qt::Key_F10 && !event->modifiers()) || opensMenu(*event, *title)) {
            menuBar()->setActiveAction(title);
            return;
        }
    }
    QMainWindow::keyPressEvent(event);
}

} // namespace tovi
