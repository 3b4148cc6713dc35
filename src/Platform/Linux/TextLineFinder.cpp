// SPDX-License-Identifier: MIT
#include "Platform/Linux/TextLineFinder.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <vector>

#include "Platform/Linux/EdgeMap.h"

namespace tovi {

namespace {

constexpr qsizetype mostLines = 3000; ///< a large screen full of small text; more are a pattern
constexpr int leastOfLine = 85;       ///< of 100: lower ones are cut
constexpr uchar blackInk = 160;       ///< of 255, which is none
constexpr int lowestBlock = 20;       ///< pixels of lines that touch
constexpr int smallestLine = EdgeMap::smallestLine;
constexpr double gutter = 1.8;       ///< of a line's height: a gap so wide separates columns
constexpr double proseGutter = 0.9;  ///< the same where prose stands on both sides
constexpr double mostBlanks = 4.5;   ///< line heights between words of a line that stands alone
constexpr double cellGap = 1.25;     ///< of a line's height between the cells of a line
constexpr int lineOfProse = 7;       ///< line heights: columns of shorter ones are read row by row
constexpr double proseStep = 1.75;   ///< line heights from one line of prose to the next
constexpr qsizetype fewestLines = 3; ///< of a column of prose
constexpr int lineOfShortProse = 13; ///< line heights where there are two lines only
constexpr double shortProseStep = 2.4;
constexpr double tableStep = 3.5; ///< line heights from one row of a table to the next

class LineFinder
{
public:
    LineFinder(const QImage &ink, const std::function<bool()> &isStopped)
        : m_isStopped(isStopped)
        , m_ink(ink)
        , m_edges(ink)
    {}

    QList<TextLine> find()
    {
        const std::vector<Span> rows = m_edges.inkedRows(m_edges.bounds());
        m_lineHeight = typicalHeight(rows);
        split(m_edges.bounds());
        dropCutLines();
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
        const std::vector<int> strokes = m_edges.strokesOfRows(part);
        const bool hasStrokes = std::ranges::any_of(strokes, [](int ink) { return ink > 0; });
        if (letter == 0 || block.length() * 2 < letter * (hasStrokes ? 4 : 5))
            return {block};
        std::vector<int> ink = m_edges.inkOfRows(part);
        std::ranges::transform(ink, strokes, ink.begin(), std::minus());
        std::vector<Span> lines;
        int begin = 0;
        for (int y = letter; y + letter <= block.length(); ++y) {
            const auto around = ink.begin() + y;
            const int most = *std::max_element(around - letter, around + letter);
            const bool isLeast = *std::min_element(around - letter / 2, around + letter / 2) == *around;
            if (isLeast && *around * 3 < most && y - begin >= letter) {
                // Underscores belong to what is above them.
                int end = y;
                for (int below = y; below < y + letter / 2 && ink[size_t(below)] * 3 < most; ++below)
                    end = strokes[size_t(below)] > 0 ? below + 1 : end;
                lines.push_back({block.begin + begin, block.begin + end});
                begin = end;
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
                if (gap * 2 <= m_lineHeight && isUnderscores(rowRect(rect, row.begin, row.end))) {
                    last.end = row.end;
                    continue;
                }
            }
            rows.push_back(row);
        }
        return rows;
    }

    bool isUnderscores(const QRect &row) const
    {
        return row.height() <= std::max(3, m_lineHeight / 4) &&
               std::ranges::all_of(m_edges.inkedColumns(row), [&](const Span &stroke) {
                   return stroke.length() * 5 >= m_lineHeight * 2;
               });
    }

    /// Ink with narrow gaps in it.
    static std::vector<Span> joined(const std::vector<Span> &spans, double gutterWidth)
    {
        std::vector<Span> columns;
        for (const Span &span : spans) {
            if (!columns.empty() && span.begin - columns.back().end < int(gutterWidth))
                columns.back().end = span.end;
            else
                columns.push_back(span);
        }
        return columns;
    }

    std::vector<Span> columnsOf(const QRect &rect) const
    {
        return joined(m_edges.inkedColumns(rect), gutter * m_lineHeight);
    }

    static QRect rowRect(const QRect &rect, int top, int bottom)
    {
        return {rect.x(), top, rect.width(), bottom - top};
    }

    void split(const QRect &rect)
    {
        const std::vector<Span> rows = rowsOf(rect);
        for (size_t i = 0; i < rows.size() && !isOver();) {
            std::vector<Span> columns;
            size_t end = i;
            if (const auto prose = proseFrom(rect, rows, i)) {
                readColumns(prose->columns, rowRect(rect, rows[i].begin, rows[prose->end - 1].end));
                i = prose->end;
                continue;
            }
            // As many rows as share a gutter are columns, which are read one after the other.
            for (size_t next = i; next < rows.size() && !isOver(); ++next) {
                const std::vector<Span> wider = columnsOf(rowRect(rect, rows[i].begin, rows[next].end));
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
            if (isTable(part, columns) || (end == i + 1 && isRowOfTable(rect, rows, i, columns.size()))) {
                for (; i < end; ++i)
                    addLines(rowRect(rect, rows[i].begin, rows[i].end));
                continue;
            }
            readColumns(columns, part);
            i = end;
        }
    }

    /// Whether a row that shares no wide gutter with its neighbours shares narrow ones with one of them.
    bool isRowOfTable(const QRect &rect, const std::vector<Span> &rows, size_t row, size_t columns) const
    {
        const auto cells = [&](size_t first, size_t last) {
            const QRect part = rowRect(rect, rows[first].begin, rows[last].end);
            return joined(m_edges.inkedColumns(part), proseGutter * m_lineHeight).size();
        };
        const auto isShared = [&](size_t first) {
            return rows[first + 1].begin - rows[first].begin <= m_lineHeight * tableStep &&
                   std::min(cells(first, first), cells(first + 1, first + 1)) >= columns &&
                   cells(first, first + 1) >= columns;
        };
        return (row > 0 && isShared(row - 1)) || (row + 1 < rows.size() && isShared(row));
    }

    void readColumns(const std::vector<Span> &columns, const QRect &rect)
    {
        for (const Span &column : columns) {
            const QRect part(column.begin, rect.top(), column.length(), rect.height());
            if (columnsOf(part).size() == 1 && rowsOf(part).size() == 1)
                addLines(part);
            else
                split(part);
        }
    }

    struct Prose
    {
        std::vector<Span> columns;
        size_t end = 0; ///< the row after it
    };

    /// Columns of prose need a narrow gutter only: blanks of prose do not stand below each other by chance.
    std::optional<Prose> proseFrom(const QRect &rect, const std::vector<Span> &rows, size_t first) const
    {
        Prose prose;
        size_t cellsOfFirst = 0;
        std::vector<int> ink(size_t(rect.width()));
        for (size_t next = first; next < rows.size() && !isOver(); ++next) {
            const std::vector<int> ofRow =
                m_edges.inkOfColumns(rowRect(rect, rows[next].begin, rows[next].end));
            std::ranges::transform(ink, ofRow, ink.begin(), std::plus());
            const std::vector<Span> columns =
                joined(EdgeMap::spans(ink, rect.x()), proseGutter * m_lineHeight);
            if (columns.size() < 2)
                break;
            if (next == first)
                cellsOfFirst = columns.size();
            prose = {columns, next + 1};
        }
        if (prose.columns.empty() || prose.columns.size() < cellsOfFirst)
            return std::nullopt;
        if (prose.end - first < size_t(fewestLines)) {
            for (size_t i = 1; i < prose.columns.size(); ++i) {
                if (prose.columns[i].begin - prose.columns[i - 1].end < int(gutter * m_lineHeight))
                    return std::nullopt;
            }
        }
        const QRect part = rowRect(rect, rows[first].begin, rows[prose.end - 1].end);
        const bool isProse = std::ranges::all_of(prose.columns, [&](const Span &column) {
            return isColumnOfProse({column.begin, part.top(), column.length(), part.height()});
        });
        return isProse ? std::optional(prose) : std::nullopt;
    }

    /// Most lines of prose are full, and close to each other or nearly all of them full. Two lines tell
    /// enough when they are long.
    bool isColumnOfProse(const QRect &rect) const
    {
        const std::vector<Span> rows = rowsOf(rect);
        const auto count = qsizetype(rows.size());
        const int words = int(m_edges.inkedColumns(rect).size());
        const bool isShort = count < fewestLines;
        if (count < 2 || rect.width() < m_lineHeight * (isShort ? lineOfShortProse : lineOfProse) ||
            (!isShort && rect.width() < m_lineHeight * words * 2))
            return false;
        qsizetype full = 0;
        bool isEven = true; // as lines of scripts without blanks are
        std::vector<int> steps;
        for (size_t i = 0; i < rows.size(); ++i) {
            const auto ink = m_edges.inkedColumns(rowRect(rect, rows[i].begin, rows[i].end));
            const bool isLast = i + 1 == rows.size();
            full += (ink.back().end - ink.front().begin) * 10 >= rect.width() * (isShort && !isLast ? 8 : 7);
            isEven = isEven && (isLast || rect.right() - ink.back().end <= m_lineHeight * 5 / 4);
            if (i > 0)
                steps.push_back(rows[i].begin - rows[i - 1].begin);
        }
        const auto middle = steps.begin() + std::ptrdiff_t(steps.size() / 2);
        std::nth_element(steps.begin(), middle, steps.end());
        const bool isDense =
            *middle <= m_lineHeight * proseStep || (isEven && *middle <= m_lineHeight * shortProseStep &&
                                                    rect.width() >= m_lineHeight * lineOfShortProse);
        if (isShort)
            return isDense && (isEven || full > 0);
        // The last line of a paragraph is often short.
        return isDense ? (full + 1) * 4 >= count * 3 : full * 20 >= count * 17;
    }

    /// Whether columns are read across: their lines stand side by side.
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
        for (const Span &column : columns) {
            const QRect part(column.begin, rect.y(), column.length(), rect.height());
            for (const Span &cell : rowsOf(part)) {
                const auto row = std::ranges::find_if(
                    rows, [&](const Span &row) { return row.begin <= cell.begin && row.end >= cell.end; });
                if (row == rows.end() || row->length() > cell.length() + m_lineHeight)
                    return false;
                ++cellsOfRow[size_t(row - rows.begin())];
            }
        }
        const auto shared = std::ranges::count_if(cellsOfRow, [](int cells) { return cells > 1; });
        return shared * 2 >= qsizetype(rows.size());
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
        const int height = rows.back().end - rows.front().begin;
        if (height < smallestLine || columns.back().end - columns.front().begin < 3)
            return;
        TextLine line;
        for (const Span &cell : joined(columns, cellGap * std::max(height, m_lineHeight)))
            line << QRect(cell.begin, rows.front().begin, cell.length(), height);
        m_lines << line;
    }

    bool hasInk(const QRect &box, int y) const
    {
        const uchar *row = m_ink.constScanLine(y);
        return std::any_of(row + box.left(), row + box.right() + 1,
                           [](uchar value) { return value < blackInk; });
    }

    /// What the picture's edge has cut reads as anything. Such a line is lower than the one next to it.
    void dropCutLines()
    {
        const QList<TextLine> lines = m_lines;
        const auto boxOf = [](const TextLine &line) { return line.first() | line.last(); };
        m_lines.removeIf([&](const TextLine &line) {
            const QRect box = boxOf(line);
            const bool isAtTop = box.top() == 0 && hasInk(box, 0);
            if (!isAtTop && (box.bottom() < m_ink.height() - 1 || !hasInk(box, box.bottom())))
                return false;
            const auto distance = [&](const TextLine &other) {
                return std::abs(boxOf(other).center().y() - box.center().y());
            };
            const TextLine *next = nullptr;
            for (const TextLine &other : lines) {
                const QRect beside = boxOf(other);
                const bool isCut = beside.top() <= 0 || beside.bottom() >= m_ink.height() - 1;
                if (!isCut && beside.left() <= box.right() && beside.right() >= box.left() &&
                    (!next || distance(other) < distance(*next)))
                    next = &other;
            }
            return next && box.height() * 100 < next->first().height() * leastOfLine;
        });
    }

    const std::function<bool()> &m_isStopped;
    const QImage &m_ink;
    EdgeMap m_edges;
    int m_lineHeight = smallestLine;
    QList<TextLine> m_lines;
};

} // namespace

QList<TextLine> findTextLines(const QImage &ink, const std::function<bool()> &isStopped)
{
    if (ink.isNull())
        return {};
    Q_ASSERT(ink.format() == QImage::Format_Grayscale8);
    return LineFinder(ink, isStopped).find();
}

} // namespace tovi
