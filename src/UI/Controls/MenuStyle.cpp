// SPDX-License-Identifier: MIT
#include "UI/Controls/MenuStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QStyleOptionMenuItem>

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
/// Names of engines may be of any length.
constexpr int maximumTextWidth = 360;

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
        painter.drawRoundedRect(QRectF(item.rect), 4, 4);
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
    painter.setPen(color);
    painter.setFont(item.font);
    painter.drawText(
        place(rest),
        Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextHideMnemonic |
            (item.direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft),
        item.fontMetrics.elidedText(item.text, Qt::ElideRight, rest.width(), Qt::TextShowMnemonic));
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
        return 4;
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
        std::min(item->fontMetrics.size(Qt::TextSingleLine | Qt::TextHideMnemonic, item->text).width(),
                 maximumTextWidth);
    return {sidePadding * 2 + checkColumn + icon + text + 6,
            std::max(rowHeight, item->fontMetrics.height() + 6)};
}

void MenuStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    if (element == PE_FrameMenu)
        return;
    if (element != PE_PanelMenu)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    painter->fillRect(option->rect, option->palette.color(QPalette::Base));
    painter->fillRect(option->rect, SystemColor::separator(option->palette));
    painter->fillRect(option->rect.adjusted(1, 1, -1, -1), option->palette.color(QPalette::Base));
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
