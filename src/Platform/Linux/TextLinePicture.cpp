// SPDX-License-Identifier: MIT
#include "Platform/Linux/TextLinePicture.h"

#include <algorithm>
#include <array>
#include <cstring>

#include <QMargins>

namespace tovi {

namespace {

constexpr int border = 10;    ///< pixels of background around the enlarged line
constexpr int smallText = 24; ///< pixels of ink's height that are enlarged to twice their size
constexpr int widest = 8000;  ///< pixels; the recogniser's time and memory go with it

uchar median(const QImage &gray)
{
    std::array<int, 256> counts{};
    for (int y = 0; y < gray.height(); ++y) {
        const uchar *row = gray.constScanLine(y);
        for (int x = 0; x < gray.width(); ++x)
            ++counts[row[x]];
    }
    int left = gray.width() * gray.height() / 2;
    size_t value = 0;
    while (value < 255 && (left -= counts[value]) >= 0)
        ++value;
    return uchar(value);
}

} // namespace

QImage textLinePicture(const QImage &ink, const QRect &box)
{
    const QMargins margins(textLineMargin, textLineMargin, textLineMargin, textLineMargin);
    QImage line = ink.copy(box.marginsAdded(margins).intersected(ink.rect()));
    uchar background = median(line);
    if (background < 128) {
        line.invertPixels();
        background = uchar(255 - background);
    }
    double scale = box.height() <= smallText ? 2 : 2.0 * smallText / box.height();
    scale = std::min(scale, double(widest) / line.width());
    const QSize size(std::max(1, int(line.width() * scale)), std::max(1, int(line.height() * scale)));
    line = line.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
               .convertToFormat(QImage::Format_Grayscale8);
    QImage framed(line.width() + 2 * border, line.height() + 2 * border, QImage::Format_Grayscale8);
    framed.fill(background);
    for (int y = 0; y < line.height(); ++y)
        std::memcpy(framed.scanLine(y + border) + border, line.constScanLine(y), size_t(line.width()));
    return framed;
}

} // namespace tovi
