// SPDX-License-Identifier: MIT
#include "UI/SettingsView/ProviderList.h"

#include <algorithm>

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include "Localization.h"
#include "UI/Controls/ProviderIcon.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Forms/CapsuleBadge.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"
#include "UI/OverlayScrollBar.h"

namespace tovi {

namespace {

enum Role { idRole = Qt::UserRole, subtitleRole, iconRole, isDefaultRole };

constexpr int rowHeight = 44;
constexpr int sidePadding = 9;
constexpr int iconSide = 18;
constexpr int gap = 8;
constexpr int badgeGap = 4;
constexpr int subtitleSize = 10;

QString subtitle(const ProviderConfig &config)
{
    switch (config.kind) {
    case ProviderKind::google:
        return QStringLiteral("Google Translate");
    case ProviderKind::apple:
        return QStringLiteral("Apple Translate");
    case ProviderKind::openAI:
        break;
    }
    return config.model;
}

QString badge()
{
    return Localization::shared().t(Str::providerDefaultBadge);
}

/// Small, as there are names of engines beside it.
QSize badgeSize()
{
    return CapsuleBadge::sizeOf(badge()) - QSize(6, 3);
}

class RowDelegate final : public QStyledItemDelegate
{
public:
    explicit RowDelegate(ProviderList *list)
        : QStyledItemDelegate(list)
        , m_focus(new KeyboardFocus(list))
    {}

    QSize sizeHint(const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return {0, rowHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QPalette &palette = option.palette;
        const bool isSelected = option.state & QStyle::State_Selected;
        QColor color = SystemColor::label(palette);
        QColor secondary = SystemColor::secondaryLabel(palette);
        if (isSelected) {
            color = secondary = palette.color(QPalette::Active, QPalette::HighlightedText);
            secondary.setAlphaF(0.8F);
            paintSelection(*painter, option.rect, palette);
        }
        QRect room = option.rect.adjusted(sidePadding, 0, -sidePadding, 0);
        const QRectF icon(room.x(), room.y() + (rowHeight - iconSide) / 2.0, iconSide, iconSide);
        ProviderIcon::image(index.data(iconRole).toString(), iconSide).paint(*painter, icon, color);
        room.setLeft(room.left() + iconSide + gap);
        const QFont font = FormStyle::font(FormStyle::bodySize);
        const QFont small = FormStyle::font(subtitleSize);
        if (index.data(isDefaultRole).toBool()) {
            QRect place(QPoint(), badgeSize());
            place.moveCenter(room.center());
            place.moveRight(room.right());
            room.setRight(place.left() - badgeGap);
            CapsuleBadge::paint(*painter, place, badge(), color, isSelected ? color : secondary);
        }
        QRect title(room.x(), 0, room.width(), QFontMetrics(font).height());
        QRect below(room.x(), 0, room.width(), QFontMetrics(small).height());
        const QString name = index.data().toString().simplified();
        const QString subtitle = index.data(subtitleRole).toString().simplified();
        title.moveTop(room.y() +
                      (rowHeight - title.height() - (subtitle.isEmpty() ? 0 : below.height())) / 2);
        below.moveTop(title.bottom() + 1);
        paintText(*painter, title, font, color, name);
        paintText(*painter, below, small, secondary, subtitle);
        painter->restore();
    }

private:
    void paintSelection(QPainter &painter, const QRect &row, const QPalette &palette) const
    {
        painter.setPen(Qt::NoPen);
        painter.setBrush(SystemColor::accent(palette));
        painter.drawRoundedRect(QRectF(row), FormStyle::controlRadius, FormStyle::controlRadius);
        if (!m_focus->isShown())
            return;
        // A ring in the accent colour would not be seen.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette.color(QPalette::Active, QPalette::HighlightedText), 1.5));
        painter.drawRoundedRect(QRectF(row).adjusted(2.5, 2.5, -2.5, -2.5), FormStyle::controlRadius - 2,
                                FormStyle::controlRadius - 2);
    }

    static void paintText(QPainter &painter, const QRect &room, const QFont &font, const QColor &color,
                          const QString &text)
    {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         QFontMetrics(font).elidedText(text, Qt::ElideRight, room.width()));
    }

    KeyboardFocus *m_focus;
};

} // namespace

int ProviderList::widthFor(const QString &name)
{
    const int title = QFontMetrics(FormStyle::font(FormStyle::bodySize)).horizontalAdvance(name);
    const int below = QFontMetrics(FormStyle::font(subtitleSize))
                          .horizontalAdvance(subtitle(ProviderConfig::makeGoogle())) +
                      badgeGap + badgeSize().width();
    return std::max(title, below) + 2 * sidePadding + iconSide + gap + OverlayScrollBar::width + 1;
}

ProviderList::ProviderList(QWidget *parent)
    : QListWidget(parent)
{
    setFrameShape(NoFrame);
    setItemDelegate(new RowDelegate(this));
    setAccessibleName(Localization::shared().t(Str::providerList));
    setVerticalScrollMode(ScrollPerPixel);
    OverlayScrollBar::install(*this);
    viewport()->setAutoFillBackground(false);
    connect(this, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem *item) {
        if (item && !m_isShowing && onSelect)
            onSelect(item->data(idRole).toUuid());
    });
}

void ProviderList::showProviders(const QList<ProviderConfig> &providers, const QUuid &current,
                                 const std::optional<QUuid> &selected)
{
    m_isShowing = true;
    while (count() > providers.size())
        delete takeItem(count() - 1);
    while (count() < providers.size())
        addItem(QString());
    QListWidgetItem *selectedItem = nullptr;
    for (int i = 0; i < count(); ++i) {
        const ProviderConfig &config = providers.at(i);
        QListWidgetItem *row = item(i);
        const bool isDefault = config.id == current;
        QStringList spoken{config.displayName(), subtitle(config)};
        if (isDefault)
            spoken << badge();
        row->setText(config.displayName());
        row->setData(Qt::AccessibleTextRole, spoken.join(QStringLiteral(", ")));
        row->setData(idRole, config.id);
        row->setData(subtitleRole, subtitle(config));
        row->setData(iconRole, config.iconIdentifier());
        row->setData(isDefaultRole, isDefault);
        if (config.id == selected)
            selectedItem = row;
    }
    if (selectedItem != currentItem() || !selectedItem)
        setCurrentItem(selectedItem, QItemSelectionModel::ClearAndSelect);
    m_isShowing = false;
}

QItemSelectionModel::SelectionFlags ProviderList::selectionCommand(const QModelIndex &index,
                                                                   const QEvent *) const
{
    // There is no way to select nothing.
    if (!index.isValid())
        return QItemSelectionModel::NoUpdate;
    return QItemSelectionModel::ClearAndSelect;
}

void ProviderList::mousePressEvent(QMouseEvent *event)
{
    // Asking for the menu of an engine does not select it.
    if (event->button() == Qt::LeftButton)
        QListWidget::mousePressEvent(event);
}

void ProviderList::keyPressEvent(QKeyEvent *event)
{
    const bool asksForMenu = event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier;
    const QModelIndex index = currentIndex();
    if (asksForMenu && index.isValid() && onMenu)
        onMenu(index.data(idRole).toUuid(), visualRect(index).center());
    else
        QListWidget::keyPressEvent(event);
}

void ProviderList::contextMenuEvent(QContextMenuEvent *event)
{
    if (const QListWidgetItem *row = itemAt(event->pos()); row && onMenu)
        onMenu(row->data(idRole).toUuid(), event->pos());
}

} // namespace tovi
