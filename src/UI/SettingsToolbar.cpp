// SPDX-License-Identifier: MIT
#include "UI/SettingsToolbar.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

namespace {

constexpr double symbolSize = 19;
constexpr int itemHeight = 52;
constexpr int usualWidth = 82;
constexpr int narrowestWidth = 60;
constexpr double itemRadius = 8;

class ToolbarItem final : public QAbstractButton
{
public:
    ToolbarItem(const QString &identifier, const QString &symbol, QWidget *parent)
        : QAbstractButton(parent)
        , m_symbol(symbol)
        , m_focus(new KeyboardFocus(this))
    {
        setObjectName(identifier);
        setFont(FormStyle::font(12));
        setCheckable(true);
        setAutoExclusive(true);
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override
    {
        return {std::max(fontMetrics().horizontalAdvance(text()) + 20, usualWidth), itemHeight};
    }
    QSize minimumSizeHint() const override
    {
        return {std::max(fontMetrics().horizontalAdvance(text()) + 8, narrowestWidth), itemHeight};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor background = SystemColor::accent(palette());
        background.setAlphaF(isDown() ? 0.24F : 0.16F);
        if (!isChecked())
            background = SystemColor::hover(palette());
        if (isChecked() || underMouse() || isDown()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(background);
            painter.drawRoundedRect(QRectF(rect()), itemRadius, itemRadius);
        }
        const QColor color =
            isChecked() ? SystemColor::accent(palette()) : SystemColor::secondaryLabel(palette());
        SystemSymbol::image(m_symbol, symbolSize).paint(painter, QRectF(0, 6, width(), 22), color);
        painter.setPen(color);
        painter.setFont(font());
        painter.drawText(QRectF(0, 30, width(), height() - 33), Qt::AlignCenter | Qt::TextSingleLine, text());
        if (m_focus->isShown())
            FormStyle::paintFocusRing(painter, QRectF(rect()), itemRadius, palette());
    }

private:
    const QString m_symbol;
    KeyboardFocus *m_focus;
};

} // namespace

SettingsToolbar::SettingsToolbar(std::function<void(const QString &)> clicked, QWidget *parent)
    : QWidget(parent)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(10, 6, 10, 8);
    row->setSpacing(4);
    row->addStretch(1);
    for (const SettingsPane pane : SettingsPanes::all()) {
        const QString identifier = SettingsPanes::toolbarItemIdentifier(pane);
        auto *item = new ToolbarItem(identifier, SettingsPanes::symbol(pane), this);
        item->installEventFilter(this);
        connect(item, &QAbstractButton::clicked, this, [clicked, identifier] { clicked(identifier); });
        row->addWidget(item);
        m_items.append(item);
    }
    row->addStretch(1);
    relabel();
    setSelectedItem(m_items.first()->objectName());
}

void SettingsToolbar::setSelectedItem(const QString &identifier)
{
    for (QAbstractButton *item : m_items) {
        const bool isSelected = item->objectName() == identifier;
        if (isSelected)
            item->setChecked(true);
        item->setFocusPolicy(isSelected ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

QString SettingsToolbar::selectedItem() const
{
    for (const QAbstractButton *item : m_items) {
        if (item->isChecked())
            return item->objectName();
    }
    return {};
}

void SettingsToolbar::relabel()
{
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        const QString title = SettingsPanes::title(SettingsPanes::all().at(i));
        m_items[i]->setText(title);
        m_items[i]->setAccessibleName(title);
        m_items[i]->setToolTip(title);
        m_items[i]->updateGeometry();
    }
}

bool SettingsToolbar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    const int step = key == Qt::Key_Right || key == Qt::Key_Down ? 1
                     : key == Qt::Key_Left || key == Qt::Key_Up  ? -1
                                                                 : 0;
    if (step == 0)
        return QWidget::eventFilter(watched, event);
    const qsizetype at = m_items.indexOf(static_cast<QAbstractButton *>(watched));
    QAbstractButton *next = m_items[(at + step + m_items.size()) % m_items.size()];
    next->setFocus(Qt::TabFocusReason);
    next->click();
    return true;
}

void SettingsToolbar::paintEvent(QPaintEvent *)
{
    const double line = FormStyle::hairline(*this);
    QPainter(this).fillRect(QRectF(0, height() - line, width(), line), SystemColor::separator(palette()));
}

} // namespace tovi
