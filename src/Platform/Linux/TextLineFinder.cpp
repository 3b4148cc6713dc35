// SPDX-License-Identifier: MIT
#include "Platform/Linux/TextLineFinder.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace tovi {

namespace {

constexpr int edgeStep = 28;       ///< of 255: fainter steps are shading, not text
constexpr int longestStroke = 100; ///< pixels; what is longer is a border or an underline
constexpr int smallestLine = 5;    ///< pixels of height
constexpr double gutter = 1.8;     ///< of a line's height: a gap so wide separates columns

struct Span
{
    int begin = 0;
    int end = 0;
    int length() const { return end - begin; }
};

/// One byte a pixel, 1 where the picture has an edge.
class EdgeMap
{
public:
    explicit EdgeMap(const QImage &gray)
        : m_width(gray.width())
        , m_height(gray.height())
        , m_edges(size_t(m_width) * size_t(m_height))
    {
        for (int y = 0; y < m_height; ++y) {
            const uchar *row = gray.constScanLine(y);
            const uchar *below = gray.constScanLine(std::min(y + 1, m_height - 1));
            for (int x = 0; x < m_width; ++x) {
                const int right = row[std::min(x + 1, m_width - 1)];
                at(x, y) = std::abs(row[x] - right) > edgeStep || std::abs(row[x] - below[x]) > edgeStep;
            }
        }
        dropLongStrokes(m_height, m_width, [this](int line, int i) -> uchar & { return at(i, line); });
        dropLongStrokes(m_width, m_height, [this](int line, int i) -> uchar & { return at(line, i); });
    }

    QRect bounds() const { return {0, 0, m_width, m_height}; }

    /// Parts of a rectangle's rows (or columns) that have ink.
    std::vector<Span> inkedRows(const QRect &rect) const
    {
        std::vector<int> counts(size_t(rect.height()));
        for (int y = 0; y < rect.height(); ++y) {
            const uchar *row = &m_edges[size_t(rect.y() + y) * size_t(m_width) + size_t(rect.x())];
            counts[size_t(y)] = int(std::count(row, row + rect.width(), 1));
        }
        return spans(counts, rect.y());
    }
    std::vector<Span> inkedColumns(const QRect &rect) const
    {
        std::vector<int> counts(size_t(rect.width()));
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            const uchar *row = &m_edges[size_t(y) * size_t(m_width) + size_t(rect.x())];
            for (size_t x = 0; x < counts.size(); ++x)
                counts[x] += row[x];
        }
        return spans(counts, rect.x());
    }

private:
    uchar &at(int x, int y) { return m_edges[size_t(y) * size_t(m_width) + size_t(x)]; }

    template <class At>
    void dropLongStrokes(int lines, int length, At edge)
    {
        for (int line = 0; line < lines; ++line) {
            int begin = 0;
            for (int i = 0; i <= length; ++i) {
                if (i < length && edge(line, i))
                    continue;
                if (i - begin > longestStroke) {
                    for (int k = begin; k < i; ++k)
                        edge(line, k) = 0;
                }
                begin = i + 1;
            }
        }
    }

    static std::vector<Span> spans(const std::vector<int> &counts, int offset)
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

    int m_width;
    int m_height;
    std::vector<uchar> m_edges;
};

class LineFinder
{
public:
    explicit LineFinder(const QImage &gray)
        : m_edges(gray)
    {}

    QList<QRect> find()
    {
        const std::vector<Span> rows = m_edges.inkedRows(m_edges.bounds());
        m_lineHeight = typicalHeight(rows);
        split(m_edges.bounds());
        return m_lines;
    }

private:
    static int typicalHeight(const std::vector<Span> &rows)
    {
        std::vector<int> heights;
        for (const Span &row : rows) {
            if (row.length() >= smallestLine)
                heights.push_back(row.length());
        }
        if (heights.empty())
            return smallestLine;
        // Neighbouring columns join lines, so the lower ones tell more than the middle one.
        const auto low = heights.begin() + std::ptrdiff_t(heights.size() / 3);
        std::nth_element(heights.begin(), low, heights.end());
        return *low;
    }

    /// Dots and marks that stand alone belong to the line they are nearest to.
    std::vector<Span> rowsOf(const QRect &rect) const
    {
        std::vector<Span> rows;
        for (const Span &row : m_edges.inkedRows(rect)) {
            if (!rows.empty()) {
                Span &last = rows.back();
                const int gap = row.begin - last.end;
                const int small = std::min(row.length(), last.length());
                if (gap * 4 <= m_lineHeight && small * 5 <= m_lineHeight * 2 &&
                    row.end - last.begin <= m_lineHeight * 3 / 2) {
                    last.end = row.end;
                    continue;
                }
            }
            rows.push_back(row);
        }
        return rows;
    }

    std::vector<Span> columnsOf(const QRect &rect, int height) const
    {
        std::vector<Span> columns;
        for (const Span &span : m_edges.inkedColumns(rect)) {
            if (!columns.empty() && span.begin - columns.back().end < int(gutter * height))
                columns.back().end = span.end;
            else
                columns.push_back(span);
        }
        return columns;
    }

    static QRect rowRect(const QRect &rect, int top, int bottom)
    {
        return {rect.x(), top, rect.width(), bottom - top};
    }

    void split(const QRect &rect)
    {
        const std::vector<Span> rows = rowsOf(rect);
        for (size_t i = 0; i < rows.size();) {
            // As many rows as share a gutter are columns, which are read one after the other.
            std::vector<Span> columns;
            size_t end = i;
            for (size_t next = i; next < rows.size(); ++next) {
                const std::vector<Span> wider =
                    columnsOf(rowRect(rect, rows[i].begin, rows[next].end), m_lineHeight);
                if (wider.size() < 2 || (!columns.empty() && wider.size() != columns.size()))
                    break;
                columns = wider;
                end = next + 1;
            }
            if (columns.empty()) {
                addLine(rowRect(rect, rows[i].begin, rows[i].end));
                ++i;
                continue;
            }
            for (const Span &column : columns) {
                const QRect part(column.begin, rows[i].begin, column.length(),
                                 rows[end - 1].end - rows[i].begin);
                if (columnsOf(part, m_lineHeight).size() == 1 && rowsOf(part).size() == 1)
                    addLine(part);
                else
                    split(part);
            }
            i = end;
        }
    }

    void addLine(const QRect &rect)
    {
        const std::vector<Span> columns = m_edges.inkedColumns(rect);
        const std::vector<Span> rows = m_edges.inkedRows(rect);
        if (columns.empty() || rows.empty())
            return;
        const QRect box(columns.front().begin, rows.front().begin, columns.back().end - columns.front().begin,
                        rows.back().end - rows.front().begin);
        if (box.height() >= smallestLine && box.width() >= 3)
            m_lines << box;
    }

    EdgeMap m_edges;
    int m_lineHeight = smallestLine;
    QList<QRect> m_lines;
};

} // namespace

QList<QRect> findTextLines(const QImage &gray)
{
    if (gray.isNull())
        return {};
    Q_ASSERT(gray.format() == QImage::Format_Grayscale8);
    return LineFinder(gray).find();
}

} // namespace tovi
