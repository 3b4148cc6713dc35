// SPDX-License-Identifier: MIT
#include "Platform/Linux/TextLineFinder.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace tovi {

namespace {

constexpr int edgeStep = 28;          ///< of 255: fainter steps are shading, not text
constexpr qsizetype mostLines = 3000; ///< a large screen full of small text; more are a pattern
constexpr int lowestBlock = 20;       ///< pixels of lines that touch
constexpr int smallestLine = 5;       ///< pixels of height
constexpr double gutter = 1.8;        ///< of a line's height: a gap so wide separates columns
constexpr double mostBlanks = 2.2;    ///< line heights between words of a line that stands alone
constexpr int lineOfProse = 7;        ///< line heights: columns of shorter ones are read row by row

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
        findParts();
    }

    QRect bounds() const { return {0, 0, m_width, m_height}; }

    /// Most connected strokes in a rectangle are lower, as ideographs have many; 0 without any.
    int letterHeight(const QRect &rect) const
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

    std::vector<int> inkOfRows(const QRect &rect) const
    {
        std::vector<int> counts(size_t(rect.height()));
        for (int y = 0; y < rect.height(); ++y) {
            const uchar *row = &m_edges[size_t(rect.y() + y) * size_t(m_width) + size_t(rect.x())];
            counts[size_t(y)] = int(std::count(row, row + rect.width(), 1));
        }
        return counts;
    }

    /// Parts of a rectangle's rows (or columns) that have ink.
    std::vector<Span> inkedRows(const QRect &rect) const { return spans(inkOfRows(rect), rect.y()); }
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
    size_t index(int x, int y) const { return size_t(y) * size_t(m_width) + size_t(x); }
    uchar &at(int x, int y) { return m_edges[index(x, y)]; }

    void findParts()
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

    QRect takePart(QPoint start, std::vector<uchar> &isLeft, std::vector<QPoint> &part) const
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
    std::vector<QRect> m_parts;
};

class LineFinder
{
public:
    LineFinder(const QImage &gray, const std::function<bool()> &isStopped)
        : m_isStopped(isStopped)
        , m_edges(gray)
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

    /// Where lines that touch each other part: rows with the least ink, about a letter's height apart.
    std::vector<Span> linesOf(const QRect &rect, const Span &block) const
    {
        const QRect part = rowRect(rect, block.begin, block.end);
        if (block.length() < lowestBlock)
            return {block};
        const int letter = m_edges.letterHeight(part);
        if (letter == 0 || block.length() * 2 < letter * 5)
            return {block};
        const std::vector<int> ink = m_edges.inkOfRows(part);
        std::vector<Span> lines;
        int begin = 0;
        for (int y = letter; y + letter <= block.length(); ++y) {
            const auto around = ink.begin() + y;
            const int most = *std::max_element(around - letter, around + letter);
            const bool isLeast = *std::min_element(around - letter / 2, around + letter / 2) == *around;
            if (isLeast && *around * 3 < most && y - begin >= letter) {
                lines.push_back({block.begin + begin, block.begin + y});
                begin = y;
            }
        }
        lines.push_back({block.begin + begin, block.end});
        return lines;
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
        for (size_t i = 0; i < rows.size() && !isOver();) {
            // As many rows as share a gutter are columns, which are read one after the other.
            std::vector<Span> columns;
            size_t end = i;
            for (size_t next = i; next < rows.size() && !isOver(); ++next) {
                const std::vector<Span> wider =
                    columnsOf(rowRect(rect, rows[i].begin, rows[next].end), m_lineHeight);
                if (wider.size() < 2 || (!columns.empty() && wider.size() != columns.size()))
                    break;
                columns = wider;
                end = next + 1;
            }
            if (columns.empty()) {
                addLines(rowRect(rect, rows[i].begin, rows[i].end));
                ++i;
                continue;
            }
            const QRect part = rowRect(rect, rows[i].begin, rows[end - 1].end);
            if (isTable(part, columns)) {
                for (; i < end; ++i)
                    addLines(rowRect(rect, rows[i].begin, rows[i].end));
                continue;
            }
            for (const Span &column : columns) {
                const QRect ofColumn(column.begin, part.top(), column.length(), part.height());
                if (columnsOf(ofColumn, m_lineHeight).size() == 1 && rowsOf(ofColumn).size() == 1)
                    addLines(ofColumn);
                else
                    split(ofColumn);
            }
            i = end;
        }
    }

    /// Whether columns are read across: their lines stand side by side, and are no lines of prose.
    bool isTable(const QRect &rect, const std::vector<Span> &columns) const
    {
        const std::vector<Span> rows = rowsOf(rect);
        if (rows.size() == 1) {
            int widest = 0;
            for (size_t i = 1; i < columns.size(); ++i)
                widest = std::max(widest, columns[i].begin - columns[i - 1].end);
            return widest <= m_lineHeight * mostBlanks;
        }
        std::vector<int> cellsOfRow(rows.size());
        int proseColumns = 0;
        for (const Span &column : columns) {
            const QRect part(column.begin, rect.y(), column.length(), rect.height());
            std::vector<int> widths;
            for (const Span &cell : rowsOf(part)) {
                const auto row = std::ranges::find_if(
                    rows, [&](const Span &row) { return row.begin <= cell.begin && row.end >= cell.end; });
                if (row == rows.end() || row->length() > cell.length() + m_lineHeight)
                    return false;
                ++cellsOfRow[size_t(row - rows.begin())];
                const auto ink =
                    m_edges.inkedColumns({column.begin, cell.begin, column.length(), cell.length()});
                widths.push_back(ink.back().end - ink.front().begin);
            }
            const auto middle = widths.begin() + std::ptrdiff_t(widths.size() / 2);
            std::nth_element(widths.begin(), middle, widths.end());
            // Blanks of prose do not stand below each other, as those of lists and terminals do.
            const int words = int(m_edges.inkedColumns(part).size());
            proseColumns += *middle >= m_lineHeight * lineOfProse && *middle * 10 >= column.length() * 7 &&
                            column.length() >= m_lineHeight * words * 2;
        }
        const auto shared = std::ranges::count_if(cellsOfRow, [](int cells) { return cells > 1; });
        return proseColumns < 2 && shared * 2 >= qsizetype(rows.size());
    }

    bool isOver() const { return m_lines.size() >= mostLines || m_isStopped(); }

    void addLines(const QRect &rect)
    {
        for (const Span &line : linesOf(rect, {rect.top(), rect.bottom() + 1}))
            addLine(rowRect(rect, line.begin, line.end));
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

    const std::function<bool()> &m_isStopped;
    EdgeMap m_edges;
    int m_lineHeight = smallestLine;
    QList<QRect> m_lines;
};

} // namespace

QList<QRect> findTextLines(const QImage &ink, const std::function<bool()> &isStopped)
{
    if (ink.isNull())
        return {};
    Q_ASSERT(ink.format() == QImage::Format_Grayscale8);
    return LineFinder(ink, isStopped).find();
}

} // namespace tovi
