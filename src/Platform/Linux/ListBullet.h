// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QImage>
#include <QRect>

namespace tovi {

struct ListBullet
{
    QChar sign;    ///< a bullet or a hyphen, whatever stands for them
    int width = 0; ///< pixels from the line's beginning to what follows
};

/// The bullet that a line of a screen's ink begins with, by its shape, which recognisers take for all kinds
/// of signs. None unless it is certain. Any thread.
std::optional<ListBullet> listBullet(const QImage &ink, const QRect &line);

} // namespace tovi
