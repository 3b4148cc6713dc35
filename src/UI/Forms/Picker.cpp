// SPDX-License-Identifier: MIT
#include "UI/Forms/Picker.h"

#include <cmath>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include "UI/Controls/MenuPresenter.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

namespace {

constexpr int side = 10;
constexpr int chevronWidth = 10;
constexpr int gap = 7;
constexpr double iconSide = 14;
constexpr int longestWidth = 260;

/// The toolkit's own does not tell of our menu.
class AccessiblePicker : public QAccessibleWidget
{
public:
    explicit AccessiblePicker(Picker *picker)
        : QAccessibleWidget(picker, QAccessible::ComboBox)
    {}

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return picker()->shownTitle();
        // As the toolkit has it: the name is what is chosen, and the label, if there is one, tells for what.
        if (kind == QAccessible::Name)
            return relations(QAccessible::Label).isEmpty()
                       ? picker()->accessibleName() + QStringLiteral(": ") + picker()->shownTitle()
                       : picker()->shownTitle();
        return QAccessibleWidget::text(kind);
    }
    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = picker()->menu() != nullptr;
        return state;
    }
    QStringList actionNames() const override
    {
        return picker()->isEnabled() ? QStringList{showMenuAction(), pressAction()} : QStringList();
    }
    void doAction(const QString &name) override
    {
        if (name == showMenuAction() || name == pressAction())
            picker()->showPopup();
    }
    int childCount() const override { return picker()->menu() ? 1 : 0; }
    QAccessibleInterface *child(int index) const override
    {
        return index == 0 && picker()->menu() ? QAccessible::queryAccessibleInterface(picker()->menu())
                                              : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child && picker()->menu() && child->object() == picker()->menu() ? 0 : -1;
    }

private:
    Picker *picker() const { return static_cast<Picker *>(widget()); }
};

QAccessibleInterface *accessibleFor(const QString &className, QObject *object)
{
    return className == QLatin1StringView(Picker::staticMetaObject.className())
               ? new AccessiblePicker(static_cast<Picker *>(object))
               : nullptr;
}

} // namespace

Picker::Picker(QWidget *parent)
    : QComboBox(parent)
    , m_focus(new KeyboardFocus(this))
{
    static const bool isInstalled = (QAccessible::installFactory(accessibleFor), true);
    Q_UNUSED(isInstalled)
    setFont(FormStyle::font(FormStyle::bodySize));
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        updateGeometry();
        QAccessibleEvent event(this, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&event);
    });
}

void Picker::addEntry(const QString &title, const QString &tag, const IconImage &image)
{
    m_images.append(image);
    addItem(title, tag);
}

void Picker::setTag(const QString &tag)
{
    setTag(tag, tag, {});
}

void Picker::setTag(const QString &tag, const QString &title, const IconImage &image)
{
    setPlaceholderText(title);
    m_otherImage = image;
    setCurrentIndex(findData(tag));
    updateGeometry();
    update();
}

void Picker::onPick(std::function<void(const QString &)> picked)
{
    connect(this, &QComboBox::activated, this, [this, picked = std::move(picked)](int index) {
        if (index >= 0 && index < count())
            picked(itemData(index).toString());
    });
}

QMenu *Picker::menu() const
{
    return m_menu && m_menu->isVisible() ? m_menu.get() : nullptr;
}

void Picker::showPopup()
{
    if (menu() || !isVisible() || !isEnabled())
        return;
    auto menu = MenuPresenter::makeMenu();
    menu->setMinimumWidth(width());
    QAction *active = nullptr;
    for (int i = 0; i < count(); ++i) {
        QAction *action = menu->addAction(MenuPresenter::literalTitle(itemText(i)));
        action->setCheckable(true);
        action->setChecked(i == currentIndex());
        action->setIcon(m_images.value(i).icon());
        connect(action, &QAction::triggered, this, [this, i] {
            setCurrentIndex(i);
            Q_EMIT activated(i);
        });
        if (!active || action->isChecked())
            active = action;
    }
    connect(menu.get(), &QMenu::aboutToHide, this, [this] { update(); });
    // Rows have their controls at the right: so the menu's edge is the picker's.
    const QPoint corner(width() - menu->sizeHint().width(), height() + 2);
    m_menu = MenuPresenter::popUp(std::move(menu), *this, corner);
    if (m_focus->isShown() && active)
        m_menu->setActiveAction(active);
}

QSize Picker::sizeHint() const
{
    return {std::min(widthFor(shownTitle()), longestWidth), std::max(fontMetrics().height() + 6, 26)};
}

QSize Picker::minimumSizeHint() const
{
    return sizeHint();
}

void Picker::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QComboBox::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        showPopup();
}

void Picker::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        showPopup();
    else
        event->ignore();
}

void Picker::wheelEvent(QWheelEvent *event)
{
    // The wheel scrolls the form; it must not change what the pointer happens to pass.
    event->ignore();
}

void Picker::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(FormStyle::controlFill(palette(), isEnabled() && underMouse()));
    painter.drawRoundedRect(QRectF(rect()), FormStyle::controlRadius, FormStyle::controlRadius);

    const QColor color = isEnabled() ? SystemColor::label(palette()) : SystemColor::disabledLabel(palette());
    double x = side;
    if (const IconImage image = shownImage()) {
        image.paint(painter, QRectF(x, (height() - iconSide) / 2, iconSide, iconSide), color);
        x += iconSide + gap;
    }
    const QRectF room(x, 0, width() - x - gap - chevronWidth - side, height());
    painter.setPen(color);
    painter.setFont(font());
    painter.drawText(
        room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        fontMetrics().elidedText(shownTitle(), Qt::ElideRight, static_cast<int>(room.width()) + 1));
    SystemSymbol::image(QStringLiteral("chevron.up.chevron.down"), 10, IconWeight::semibold)
        .paint(painter, QRectF(width() - side - chevronWidth, 0, chevronWidth, height()), color);
    if (m_focus->isShown())
        FormStyle::paintFocusRing(painter, QRectF(rect()), FormStyle::controlRadius, palette());
}

int Picker::widthFor(const QString &title) const
{
    const double icon = shownImage() ? iconSide + gap : 0;
    return static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(title) + icon)) + 1 + 2 * side +
           gap + chevronWidth;
}

IconImage Picker::shownImage() const
{
    return currentIndex() < 0 ? m_otherImage : m_images.value(currentIndex());
}

} // namespace tovi
