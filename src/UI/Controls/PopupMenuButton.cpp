// SPDX-License-Identifier: MIT
#include "UI/Controls/PopupMenuButton.h"

#include <cmath>
#include <utility>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include "UI/Controls/ControlSurface.h"
#include "UI/Controls/MenuPresenter.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi {

namespace {

constexpr int buttonHeight = 18;
constexpr double iconSide = 14;
constexpr double iconAdvance = 18;
constexpr double chevronGap = 4;
constexpr double chevronFontSize = 8;
constexpr int sideRoom = 6;
constexpr QChar ellipsis(0x2026);

class AccessiblePopupMenuButton : public QAccessibleWidget
{
public:
    explicit AccessiblePopupMenuButton(PopupMenuButton *button)
        : QAccessibleWidget(button, QAccessible::ButtonMenu)
    {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = button()->menu() != nullptr;
        return state;
    }
    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (button()->isEnabled())
            names.prepend(pressAction());
        return names;
    }
    void doAction(const QString &name) override
    {
        if (name == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(name);
    }

    // The toolkit lists no menu by itself that is no widget's child.
    int childCount() const override { return button()->menu() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override
    {
        return index == 0 && button()->menu() ? QAccessible::queryAccessibleInterface(button()->menu())
                                              : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child && button()->menu() && child->object() == button()->menu() ? 0 : -1;
    }

private:
    PopupMenuButton *button() const { return static_cast<PopupMenuButton *>(widget()); }
};

QAccessibleInterface *accessibleFor(const QString &className, QObject *object)
{
    if (className == QLatin1StringView(PopupMenuButton::staticMetaObject.className()))
        return new AccessiblePopupMenuButton(static_cast<PopupMenuButton *>(object));
    return nullptr;
}

} // namespace

PopupMenuButton::PopupMenuButton(QWidget *parent)
    : QAbstractButton(parent)
{
    static const bool isInstalled = (QAccessible::installFactory(accessibleFor), true);
    Q_UNUSED(isInstalled)
    QFont font = this->font();
    font.setPixelSize(11);
    setFont(font);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { popUp(true); });
}

PopupMenuButton::~PopupMenuButton() = default;

void PopupMenuButton::setContent(const QString &title, const QString &chevron, const IconImage &icon,
                                 const QList<PopupMenuItem> &items)
{
    setTitle(title);
    setChevron(chevron);
    setIconImage(icon);
    setItems(items);
}

void PopupMenuButton::setTitle(const QString &title)
{
    if (std::exchange(m_title, title) != title)
        contentChanged();
}

void PopupMenuButton::setChevron(const QString &symbol)
{
    if (std::exchange(m_chevron, symbol) != symbol)
        contentChanged();
}

void PopupMenuButton::setIconImage(const IconImage &icon)
{
    if (std::exchange(m_icon, icon) != icon)
        contentChanged();
}

void PopupMenuButton::setItems(const QList<PopupMenuItem> &items)
{
    m_items = items;
}

void PopupMenuButton::setHelp(const QString &text)
{
    setToolTip(text);
    if (std::exchange(m_help, text) != text)
        contentChanged();
}

void PopupMenuButton::setColor(const QColor &color)
{
    m_color = color;
    update();
}

QMenu *PopupMenuButton::menu() const
{
    return m_menu && m_menu->isVisible() ? m_menu.get() : nullptr;
}

void PopupMenuButton::showMenu()
{
    popUp(false);
}

QSize PopupMenuButton::sizeHint() const
{
    return {widthFor(QFontMetricsF(font()).horizontalAdvance(m_title)), buttonHeight};
}

QSize PopupMenuButton::minimumSizeHint() const
{
    const QFontMetricsF metrics(font());
    return {widthFor(std::min(metrics.horizontalAdvance(m_title), metrics.horizontalAdvance(ellipsis))),
            buttonHeight};
}

bool PopupMenuButton::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Hide:
        setHovering(false);
        m_showsFocus = false;
        if (m_menu)
            m_menu->close();
        break;
    case QEvent::PaletteChange:
        update();
        break;
    case QEvent::FontChange:
        contentChanged();
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void PopupMenuButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        popUp(false);
    else
        event->ignore();
}

void PopupMenuButton::mouseMoveEvent(QMouseEvent *event)
{
    // After a menu closed, no entering is told.
    setHovering(rect().contains(event->position().toPoint()));
    QAbstractButton::mouseMoveEvent(event);
}

void PopupMenuButton::enterEvent(QEnterEvent *event)
{
    setHovering(true);
    QAbstractButton::enterEvent(event);
}

void PopupMenuButton::leaveEvent(QEvent *event)
{
    setHovering(false);
    QAbstractButton::leaveEvent(event);
}

void PopupMenuButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Select:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        if (!event->isAutoRepeat())
            popUp(true);
        return;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void PopupMenuButton::focusInEvent(QFocusEvent *event)
{
    m_showsFocus = ControlSurface::showsFocusAfter(*event, m_showsFocus);
    QAbstractButton::focusInEvent(event);
    update();
}

void PopupMenuButton::focusOutEvent(QFocusEvent *event)
{
    m_showsFocus = ControlSurface::showsFocusAfter(*event, m_showsFocus);
    QAbstractButton::focusOutEvent(event);
    update();
}

void PopupMenuButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    ControlSurface::paint(painter, *this, isEnabled() && (m_isHovering || menu()),
                          m_showsFocus && hasFocus());

    QColor color = m_color.isValid() ? m_color : SystemColor::secondaryLabel(palette());
    if (!isEnabled())
        color = SystemColor::disabledLabel(palette());
    const QFontMetricsF metrics(font());
    const double iconWidth = m_icon ? iconAdvance : 0;
    const IconImage chevron = chevronImage();
    const QSizeF chevronSize = chevron ? chevron.size() : QSizeF(8, 8);
    double titleWidth = metrics.horizontalAdvance(m_title);
    QString title = m_title;
    const double room = rect().width() - sideRoom - iconWidth - chevronGap - chevronSize.width();
    if (titleWidth > room) {
        title = metrics.elidedText(m_title, Qt::ElideRight, room);
        titleWidth = metrics.horizontalAdvance(title);
    }
    double x = (rect().width() - (iconWidth + titleWidth + chevronGap + chevronSize.width())) / 2;
    m_icon.paint(painter, QRectF(x, (height() - iconSide) / 2, iconSide, iconSide), color);
    x += iconWidth;
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(QRectF(x, 0, titleWidth + 1, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title);
    x += titleWidth + chevronGap;
    chevron.paint(painter, QRectF(QPointF(x, (height() - chevronSize.height()) / 2), chevronSize), color);
}

void PopupMenuButton::popUp(bool byKeyboard)
{
    if (menu() || !isEnabled() || !isVisible())
        return;
    auto menu = MenuPresenter::makeMenu();
    QAction *first = nullptr;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        const PopupMenuItem &item = m_items.at(i);
        QAction *action = menu->addAction(MenuPresenter::literalTitle(item.title));
        action->setCheckable(true);
        action->setChecked(item.isSelected);
        action->setIcon(item.image.icon());
        connect(action, &QAction::triggered, this, [this, index = i] { selectItem(index); });
        if (!first || (item.isSelected && !first->isChecked()))
            first = action;
    }
    connect(menu.get(), &QMenu::aboutToHide, this, [this] {
        setHovering(false);
        update();
    });
    m_menu = MenuPresenter::popUp(std::move(menu), *this, QPoint(0, height()));
    if (byKeyboard && first)
        m_menu->setActiveAction(first);
    update();
}

void PopupMenuButton::selectItem(int index)
{
    if (index < 0 || index >= m_items.size())
        return;
    // What it does may replace the items.
    if (const auto action = m_items.at(index).action)
        action();
}

void PopupMenuButton::setHovering(bool hovering)
{
    if (std::exchange(m_isHovering, hovering) != hovering)
        update();
}

void PopupMenuButton::contentChanged()
{
    const QString name = m_help.isEmpty() ? m_title : m_help + QStringLiteral(": ") + m_title;
    if (accessibleName() != name)
        setAccessibleName(name);
    updateGeometry();
    update();
}

IconImage PopupMenuButton::chevronImage() const
{
    return SystemSymbol::image(m_chevron, chevronFontSize, IconWeight::semibold);
}

int PopupMenuButton::widthFor(double titleWidth) const
{
    const IconImage chevron = chevronImage();
    const double content =
        titleWidth + (m_icon ? iconAdvance : 0) + chevronGap + (chevron ? chevron.size().width() : 8);
    return static_cast<int>(std::ceil(content)) + sideRoom;
}

} // namespace tovi
