// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace tovi {

/// A word on a tinted capsule.
class CapsuleBadge final : public QLabel
{
    Q_OBJECT

public:
    explicit CapsuleBadge(const QString &text, QWidget *parent = nullptr);

    /// The same in any view: its size, and its drawing on a background with a tint.
    static QSize sizeOf(const QString &text);
    static void paint(QPainter &painter, const QRect &rectangle, const QString &text, const QColor &tint,
                      const QColor &color);

    QSize sizeHint() const override { return sizeOf(text()); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace tovi
