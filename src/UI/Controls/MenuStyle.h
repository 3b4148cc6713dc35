// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace tovi {

/// Menus with a column for the check mark and one for the icon, which desktop styles merge into one; with
/// round corners where these are blended.
class MenuStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Lives as long as the application.
    static MenuStyle *shared();

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *result) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;

private:
    MenuStyle() = default;
};

} // namespace tovi
