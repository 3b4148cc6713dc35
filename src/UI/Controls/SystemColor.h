// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

/// Named colours for a light or dark palette.
namespace tovi::SystemColor {

bool isDark(const QPalette &palette);
QColor label(const QPalette &palette);
QColor secondaryLabel(const QPalette &palette);
QColor disabledLabel(const QPalette &palette);
/// Thin lines between sections.
QColor separator(const QPalette &palette);
/// Behind the control under the pointer: the label colour at 8 %.
QColor hover(const QPalette &palette);
QColor accent(const QPalette &palette);
QColor red(const QPalette &palette);
QColor orange(const QPalette &palette);
QColor green(const QPalette &palette);

} // namespace tovi::SystemColor
