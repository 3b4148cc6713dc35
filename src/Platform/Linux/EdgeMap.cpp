// SPDX-License-Identifier: MIT
#include "Platform/Linux/EdgeMap.h"

#include <algorithm>
#include <cstdlib>

namespace tovi {

namespace {

constexpr int edgeStep = 28;     ///< of 255: fainter steps are shading, not text
constexpr int highestStroke = 3; ///< pixels with the edges of both sides

} // namespace

EdgeMap::EdgeMap(const QImage &ink)
    : m_width(ink.width())
    , m_height(ink.height())
    , m_edges(size_t(m_width) * size_t(m_height))
{
    for (int y = 0; y < m_height; ++y) {
        const uchar *row = ink.constScanLine(y);
        const uchar *below = ink.constScanLine(std::min(y + 1, m_height - 1));
        for (int x = 0; x < m_width; ++x) {
            const int right = row[std::min(x + 1, m_width - 1)];
            m_edges[index(x, y)] =
                std::abs(row[x] - right) > edgeStep || std::abs(row[x] - below[x]) > edgeStep;
        }
    }
    findParts();
}

int EdgeMap::letterHeight(const QRect &rect) const
{
    std::vector<int> heights;
    for (const QRect &part : m_parts) {
        if (part.height() >= smallestLine && rect.contains(part))
            heights.push_back(part.height());
    }
    if (heights.empty())
        return 0;
    const auto high = heights.begin() + std::ptrdiff_t(heights.size() * 9 / 10);
    std::nth_element(heights.begin(), high, heights.end());
    return *high;
}

std::vector<int> EdgeMap::inkOfRows(const QRect &rect) const
{
    std::vector<int> counts(size_t(rect.height()));
    for (int y = 0; y < rect.height(); ++y) {
        const uchar *row = &m_edges[size_t(rect.y() + y) * size_t(m_width) + size_t(rect.x())];
        counts[size_t(y)] = int(std::count(row, row + rect.width(), 1));
    }
    return counts;
}

std::vector<int> EdgeMap::strokesOfRows(const QRect &rect) const
{
    std::vector<int> counts(size_t(rect.height()));
    for (const QRect &part : m_parts) {
        if (part.height() > highestStroke || part.width() < part.height() * 2 || !rect.contains(part))
            continue;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            const uchar *row = &m_edges[index(part.x(), y)];
            counts[size_t(y - rect.top())] += int(std::count(row, row + part.width(), 1));
        }
    }
    return counts;
}

std::vector<int> EdgeMap::inkOfColumns(const QRect &rect) const
{
    std::vector<int> counts(size_t(rect.width()));
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const uchar *row = &m_edges[index(rect.x(), y)];
        for (size_t x = 0; x < counts.size(); ++x)
            counts[x] += row[x];
    }
    return counts;
}

void EdgeMap::findParts()
{
    std::vector<uchar> isLeft = m_edges;
    std::vector<QPoint> part;
    for (int y = 0; y < m_height; ++y) {
        for (int x = 0; x < m_width; ++x) {
            if (isLeft[index(x, y)])
                m_parts.push_back(takePart({x, y}, isLeft, part));
        }
    }
}

QRect EdgeMap::takePart(QPoint start, std::vector<uchar> &isLeft, std::vector<QPoint> &part) const
{
    part.assign(1, start);
    isLeft[index(start.x(), start.y())] = 0;
    QRect box(start, QSize(1, 1));
    for (size_t i = 0; i < part.size(); ++i) {
        const QPoint point = part[i];
        box |= QRect(point, QSize(1, 1));
        for (int y = std::max(point.y() - 1, 0); y <= std::min(point.y() + 1, m_height - 1); ++y) {
            for (int x = std::max(point.x() - 1, 0); x <= std::min(point.x() + 1, m_width - 1); ++x) {
                if (isLeft[index(x, y)]) {
                    isLeft[index(x, y)] = 0;
                    part.emplace_back(x, y);
                }
            }
        }
    }
    return box;
}

std::vector<Span> EdgeMap::spans(const std::vector<int> &counts, int offset)
{
    std::vector<Span> found;
    int begin = -1;
    for (int i = 0; i <= int(counts.size()); ++i) {
        const bool isInked = i < int(counts.size()) && counts[size_t(i)] > 0;
        if (isInked && begin < 0)
            begin = i;
        if (!isInked && begin >= 0) {
            found.push_back({begin + offset, i + offset});
            begin = -1;
        }
    }
    return found;
}

} // namespace tovi
