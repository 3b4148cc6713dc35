// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "UI/Controls/IconImage.h"

namespace tovi {

/// Engine icon names: "logo:" and a logo's name, a Lucide resource name, or a system symbol's name.
namespace ProviderIcon {
/// 16 × 16 points, for menus and buttons; none when missing.
IconImage image(const QString &iconName);
/// For a label of that size: logos and Lucide icons fill it, symbols go with text of that font size.
IconImage image(const QString &iconName, qreal size);
} // namespace ProviderIcon

/// Shows an engine's icon; decoration for the accessibility tree.
class ProviderIconView : public QWidget
{
    Q_OBJECT

public:
    explicit ProviderIconView(QWidget *parent = nullptr);
    /// An invalid colour stands for the secondary label colour.
    ProviderIconView(const QString &iconName, qreal size, const QColor &color = {},
                     QWidget *parent = nullptr);

    void setIcon(const QString &iconName, qreal size, const QColor &color = {});
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    IconImage m_image;
    qreal m_size = 16;
    QColor m_color;
};

} // namespace tovi
