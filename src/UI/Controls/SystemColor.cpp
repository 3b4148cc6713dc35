// SPDX-License-Identifier: MIT
#include "UI/Controls/SystemColor.h"

namespace tovi::SystemColor {

namespace {

QColor shade(const QPalette &palette, double light, double dark)
{
    QColor color = label(palette);
    color.setAlphaF(static_cast<float>(isDark(palette) ? dark : light));
    return color;
}

QColor pick(const QPalette &palette, QRgb light, QRgb dark)
{
    return QColor(isDark(palette) ? dark : light);
}

} // namespace

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Window).lightness() <
           palette.color(QPalette::Active, QPalette::WindowText).lightness();
}

QColor label(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::WindowText);
}

QColor secondaryLabel(const QPalette &palette)
{
    return shade(palette, 0.63, 0.65);
}

QColor disabledLabel(const QPalette &palette)
{
    return shade(palette, 0.42, 0.38);
}

QColor separator(const QPalette &palette)
{
    return shade(palette, 0.12, 0.16);
}

QColor hover(const QPalette &palette)
{
    return shade(palette, 0.08, 0.08);
}

QColor accent(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Highlight);
}

QColor red(const QPalette &palette)
{
    return pick(palette, 0xffe0352b, 0xffff5247);
}

QColor orange(const QPalette &palette)
{
    return pick(palette, 0xffc96a00, 0xffff9f0a);
}

QColor green(const QPalette &palette)
{
    return pick(palette, 0xff1f9d3f, 0xff30d158);
}

} // namespace tovi::SystemColor
