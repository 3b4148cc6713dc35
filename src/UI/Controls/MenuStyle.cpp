// SPDX-License-Identifier: MIT
#include "UI/Controls/MenuStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionMenuItem>

#include "Platform/PanelHost.h"
#include "Platform/Platform.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi {

namespace {

constexpr int sidePadding = 8;
constexpr int checkColumn = 18;
constexpr int iconSide = 16;
constexpr int iconColumn = iconSide + 7;
constexpr int rowHeight = 24;
constexpr int separatorHeight = 9;
constexpr int panelPadding = 5;
constexpr double panelRadius = 8;
constexpr double rowRadius = 5;
constexpr int shortcutGap = 24;
constexpr int arrowColumn = 14;
/// Names of engines may be of any length.
constexpr int maximumTextWidth = 360;

/// What stands before the keys, which are behind a tab.
QString title(const QStyleOptionMenuItem &item)
{
    return item.text.section(u'\t', 0, 0);
}

QString keys(const QStyleOptionMenuItem &item)
{
    return item.text.section(u'\t', 1);
}

void drawItem(const QStyleOptionMenuItem &item, QPainter &painter)
{
    const bool isChosen = item.state & QStyle::State_Selected && item.state & QStyle::State_Enabled;
    QColor color = SystemColor::label(item.palette);
    if (!(item.state & QStyle::State_Enabled))
        color = SystemColor::disabledLabel(item.palette);
    else if (isChosen)
        color = item.palette.color(QPalette::Active, QPalette::HighlightedText);

    if (isChosen) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(SystemColor::accent(item.palette));
        painter.drawRoundedRect(QRectF(item.rect), rowRadius, rowRadius);
    }
    QRect rest = item.rect.adjusted(sidePadding, 0, -sidePadding, 0);
    const auto place = [&](const QRect &inReadingOrder) {
        return QStyle::visualRect(item.direction, item.rect, inReadingOrder);
    };
    if (item.checked) {
        const QRect column(rest.left(), rest.top(), 12, rest.height());
        SystemSymbol::image(QStringLiteral("checkmark"), 12, IconWeight::semibold)
            .paint(painter, place(column), color);
    }
    rest.setLeft(rest.left() + checkColumn);
    if (item.maxIconWidth > 0) {
        const QRect column(rest.left(), rest.top() + (rest.height() - iconSide) / 2, iconSide, iconSide);
        item.icon.paint(&painter, place(column), Qt::AlignCenter,
                        isChosen                             ? QIcon::Selected
                        : item.state & QStyle::State_Enabled ? QIcon::Normal
                                                             : QIcon::Disabled);
        rest.setLeft(rest.left() + iconColumn);
    }
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        const QRect column(rest.right() + 1 - arrowColumn, rest.top(), arrowColumn, rest.height());
        SystemSymbol::image(QStringLiteral("chevron.right"), 11, IconWeight::semibold)
            .paint(painter, place(column), color);
        rest.setRight(column.left());
    }
    painter.setFont(item.font);
    const auto drawText = [&](const QRect &room, const QString &text, Qt::Alignment side) {
        const Qt::Alignment alignment = Qt::AlignVCenter | QStyle::visualAlignment(item.direction, side);
        painter.drawText(place(room), int(alignment) | Qt::TextSingleLine | Qt::TextHideMnemonic, text);
    };
    if (const QString shortcut = keys(item); !shortcut.isEmpty()) {
        const bool isSecondary = !isChosen && item.state & QStyle::State_Enabled;
        painter.setPen(isSecondary ? SystemColor::secondaryLabel(item.palette) : color);
        drawText(rest, shortcut, Qt::AlignRight);
        rest.setRight(rest.right() - item.reservedShortcutWidth - shortcutGap / 2);
    }
    painter.setPen(color);
    drawText(rest,
             item.fontMetrics.elidedText(title(item), Qt::ElideRight, rest.width(), Qt::TextShowMnemonic),
             Qt::AlignLeft);
}

} // namespace

MenuStyle *MenuStyle::shared()
{
    static QPointer<MenuStyle> style;
    if (!style) {
        style = new MenuStyle;
        style->setParent(qApp);
    }
    return style;
}

int MenuStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_MenuPanelWidth:
        return 1;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return panelPadding - 1;
    case PM_SubMenuOverlap:
        return 0;
    case PM_SmallIconSize:
        return iconSide;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int MenuStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                         QStyleHintReturn *result) const
{
    // A menu that is taller than the screen scrolls; the toolkit's own way are several columns.
    if (hint == SH_Menu_MouseTracking || hint == SH_Menu_Scrollable)
        return 1;
    return QProxyStyle::styleHint(hint, option, widget, result);
}

QSize MenuStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                  const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (type != CT_MenuItem || !item)
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        return {size.width(), separatorHeight};
    const int icon = item->maxIconWidth > 0 ? iconColumn : 0;
    const int text =
        std::min(item->fontMetrics.size(Qt::TextSingleLine | Qt::TextHideMnemonic, title(*item)).width(),
                 maximumTextWidth);
    const int atEnd = item->menuItemType == QStyleOptionMenuItem::SubMenu ? arrowColumn
                      : keys(*item).isEmpty()                             ? 0
                                                                          : shortcutGap;
    return {sidePadding * 2 + checkColumn + icon + text + 6 + atEnd,
            std::max(rowHeight, item->fontMetrics.height() + 6)};
}

void MenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    if (element == PE_FrameMenu)
        return;
    if (element != PE_PanelMenu)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    // Corners that nothing blends would be black. In the dark what is in front is lighter.
    const double radius = Platform::current().panelHost().isCompositing() ? panelRadius : 0;
    const QColor ground =
        option->palette.color(SystemColor::isDark(option->palette) ? QPalette::Button : QPalette::Base);
    const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    for (const QColor &line : {ground, SystemColor::separator(option->palette)}) {
        painter->setPen(line);
        painter->setBrush(ground);
        painter->drawRoundedRect(frame, radius, radius);
    }
    painter->restore();
}

void MenuStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (element == CE_MenuEmptyArea)
        return;
    if (element != CE_MenuItem || !item)
        return QProxyStyle::drawControl(element, option, painter, widget);
    painter->save();
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        painter->fillRect(QRect(item->rect.left() + sidePadding, item->rect.center().y(),
                                item->rect.width() - 2 * sidePadding, 1),
                          SystemColor::separator(item->palette));
    else
        drawItem(*item, *painter);
    painter->restore();
}

} // namespace tovi
