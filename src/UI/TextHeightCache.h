// SPDX-License-Identifier: MIT
#pragma once

#include <limits>

#include <QFont>
#include <QString>

/// Heights of wrapped texts, measured once. Any thread.
namespace tovi::TextHeightCache {

/// The height, in whole points, that a text takes at a width. Measuring stops beyond the limit: then the
/// answer is only known to be more than that.
double height(const QString &text, const QFont &font, double width,
              double limit = std::numeric_limits<double>::infinity());

} // namespace tovi::TextHeightCache
