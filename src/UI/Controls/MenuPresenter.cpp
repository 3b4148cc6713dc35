// SPDX-License-Identifier: MIT
#include "UI/Controls/MenuPresenter.h"

#include <algorithm>

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include "UI/Controls/MenuStyle.h"

namespace tovi::MenuPresenter {

namespace {

QPointer<QMenu> openMenu;

/// Letters typed into a menu choose the next item that begins with them.
class TypeAhead final : public QObject
{
public:
    explicit TypeAhead(QMenu &menu)
        : QObject(&menu)
        , m_menu(menu)
    {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool continues =
            key->timestamp() - m_last < static_cast<quint64>(QApplication::keyboardInputInterval());
        const QString text = key->text();
        if (text.isEmpty() || !text.front().isPrint() || key->modifiers() & ~Qt::ShiftModifier ||
            (text == QLatin1String(" ") && (!continues || m_typed.isEmpty())))
            return QObject::eventFilter(watched, event);
        m_last = key->timestamp();
        m_typed = continues ? m_typed + text : text;
        choose();
        return true;
    }

private:
    void choose()
    {
        // The same letter again goes to the next one.
        const bool isRepeated = m_typed.count(m_typed.front(), Qt::CaseInsensitive) == m_typed.size();
        const QString wanted = isRepeated ? m_typed.first(1) : m_typed;
        const QList<QAction *> actions = m_menu.actions();
        const qsizetype from = actions.indexOf(m_menu.activeAction()) + (isRepeated ? 1 : 0);
        for (qsizetype i = 0; i < actions.size(); ++i) {
            QAction *action = actions.at((std::max<qsizetype>(from, 0) + i) % actions.size());
            const QString title = action->text().replace(QLatin1String("&&"), QLatin1String("&"));
            if (action->isEnabled() && title.startsWith(wanted, Qt::CaseInsensitive)) {
                m_menu.setActiveAction(action);
                return;
            }
        }
    }

    QMenu &m_menu;
    QString m_typed;
    quint64 m_last = 0;
};

} // namespace

std::unique_ptr<QMenu> makeMenu(const QString &title)
{
    auto menu = std::make_unique<QMenu>(literalTitle(title));
    menu->setStyle(MenuStyle::shared());
    menu->setAttribute(Qt::WA_TranslucentBackground);
    menu->installEventFilter(new TypeAhead(*menu));
    QFont font = menu->font();
    font.setPixelSize(13);
    menu->setFont(font);
    return menu;
}

QMenu *addSubmenu(QMenu &menu, const QString &title)
{
    QMenu *submenu = makeMenu(title).release();
    submenu->setParent(&menu, submenu->windowFlags());
    menu.addMenu(submenu);
    return submenu;
}

QString literalTitle(const QString &title)
{
    // A tab would begin the shortcut's column.
    return title.simplified().replace(QLatin1Char('&'), QStringLiteral("&&"));
}

QMenu *popUp(std::unique_ptr<QMenu> menu, QWidget &owner, QPoint at)
{
    // Not a child of the owner: one of its actions may be what takes the owner away.
    QMenu *shown = menu.release();
    QObject::connect(shown, &QMenu::aboutToHide, shown, &QObject::deleteLater);
    QObject::connect(&owner, &QObject::destroyed, shown, &QMenu::close);
    // The press that closes a menu does nothing else.
    shown->setAttribute(Qt::WA_NoMouseReplay);
    shown->winId();
    if (QWindow *window = shown->windowHandle())
        window->setTransientParent(owner.window()->windowHandle());
    openMenu = shown;
    QPoint corner = owner.mapToGlobal(at);
    // Where there is no room below, the toolkit would put it over its owner.
    const int height = shown->sizeHint().height();
    const QRect room = owner.screen() ? owner.screen()->availableGeometry() : QRect();
    if (owner.screen() && corner.y() + height > room.bottom() + 1) {
        const int above = owner.mapToGlobal(QPoint()).y() - height;
        // A long one fits on neither side.
        corner.setY(above >= room.top() ? above : std::max(room.top(), room.bottom() + 1 - height));
    }
    shown->popup(corner);
    return shown;
}

bool isMenuOpen()
{
    return openMenu && openMenu->isVisible();
}

} // namespace tovi::MenuPresenter
