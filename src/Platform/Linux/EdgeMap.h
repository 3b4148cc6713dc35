// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include <QImage>
#include <QRect>

namespace tovi {

/// Pixels of a row or a column, the end not among them.
struct Span
{
    int begin = 0;
    int end = 0;
    int length() const { return end - begin; }
};

/// Where the picture of a screen's ink has edges, for questions about rows, columns and gaps.
class EdgeMap
{
public:
    static constexpr int smallestLine = 5; ///< pixels of height

    explicit EdgeMap(const QImage &ink);

    QRect bounds() const { return {0, 0, m_width, m_height}; }

    /// Most connected strokes in a rectangle are lower, as ideographs have many; 0 without any.
    int letterHeight(const QRect &rect) const;
    std::vector<int> inkOfRows(const QRect &rect) const;
    /// The part of it that is flat strokes by themselves, as underscores are.
    std::vector<int> strokesOfRows(const QRect &rect) const;
    std::vector<int> inkOfColumns(const QRect &rect) const;
    /// Parts of a rectangle's rows (or columns) that have ink.
    std::vector<Span> inkedRows(const QRect &rect) const { return spans(inkOfRows(rect), rect.y()); }
    std::vector<Span> inkedColumns(const QRect &rect) const { return spans(inkOfColumns(rect), rect.x()); }
    static std::vector<Span> spans(const std::vector<int> &counts, int offset);

private:
    size_t index(int x, int y) const { return size_t(y) * size_t(m_width) + size_t(x); }
    void findParts();
    QRect takePart(QPoint start, std::vector<uchar> &isLeft, std::vector<QPoint> &part) const;

    int m_width;
    int m_height;
    std::vector<uchar> m_edges; ///< one a pixel, 1 where there is an edge
    std::vector<QRect> m_parts;
};

} // namespace tovi
