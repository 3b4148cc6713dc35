// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QAbstractButton>
#include <QPointer>

#include "UI/Controls/IconImage.h"

class QMenu;

namespace tovi {

struct PopupMenuItem
{
    QString title;
    bool isSelected = false; ///< shown with a check mark
    IconImage image;         ///< optional
    std::function<void()> action;
};

/// A compact menu button: icon, title and chevron; pops up a menu at its lower-left corner. Takes the
/// keyboard by Tab and opens by Space, Return, Down or a press of the mouse.
class PopupMenuButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit PopupMenuButton(QWidget *parent = nullptr);
    ~PopupMenuButton() override;

    /// All four at once. May be called at any time, also while the menu is open.
    void setContent(const QString &title, const QString &chevron, const IconImage &icon,
                    const QList<PopupMenuItem> &items);
    void setTitle(const QString &title);
    void setChevron(const QString &symbol);
    void setIconImage(const IconImage &icon);
    void setItems(const QList<PopupMenuItem> &items);
    /// Tool tip and, before the title, accessible name.
    void setHelp(const QString &text);
    /// Invalid: the secondary label colour.
    void setColor(const QColor &color);

    QString title() const { return m_title; }
    const QList<PopupMenuItem> &items() const { return m_items; }
    /// The open menu, or none.
    QMenu *menu() const;
    void showMenu();

    /// As wide as the content needs; narrower ones cut the title short.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void popUp(bool byKeyboard);
    void selectItem(int index);
    void setHovering(bool hovering);
    void contentChanged();
    IconImage chevronImage() const;
    int widthFor(double titleWidth) const;

    QString m_title;
    QString m_chevron = QStringLiteral("chevron.down");
    IconImage m_icon;
    QList<PopupMenuItem> m_items;
    QString m_help;
    QColor m_color;
    QPointer<QMenu> m_menu;
    bool m_isHovering = false;
    bool m_showsFocus = false;
};

} // namespace tovi
