// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractButton>

#include "UI/Controls/IconImage.h"

namespace tovi {

/// A small borderless button with an icon. Takes the keyboard by Tab, never by a click, and shows a ring only
/// then. At most one is highlighted under the pointer.
class IconButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit IconButton(QWidget *parent = nullptr);
    explicit IconButton(QSize frame, QWidget *parent = nullptr);
    ~IconButton() override;

    /// A Lucide resource name, a "logo:" name or a system symbol (drawn as with text of that font size).
    /// An invalid colour stands for the secondary label colour.
    void setIcon(const QString &name, qreal size, const QColor &color = {},
                 IconWeight weight = IconWeight::regular);
    /// The same with a symbol for a missing Lucide icon.
    void setIcon(const QString &lucideName, const QString &fallbackSymbol, qreal size,
                 const QColor &color = {});
    void setImage(const IconImage &image, const QColor &color = {});
    /// The colour while the pointer is over it; invalid: the usual one.
    void setHoverColor(const QColor &color);
    /// Tool tip and accessible name.
    void setHelp(const QString &text);

    bool isHighlighted() const;
    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setHighlighted(bool highlighted);
    void setShowsFocus(bool shows);

    IconImage m_image;
    QColor m_color;
    QColor m_hoverColor;
    QSize m_frame{24, 24};
    bool m_showsFocus = false;
};

} // namespace tovi
