// SPDX-License-Identifier: MIT
#include "Platform/Linux/InkPicture.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <vector>

#include <QRect>

#include "Platform/Linux/InkStrokes.h"

namespace tovi {

namespace {

constexpr int shading = 3;      ///< of 255: how much neighbours on one ground differ, gradients included
constexpr int wideGround = 100; ///< pixels: no letter is so large
constexpr int highGround = 40;
constexpr int narrowestBlock = 16; ///< pixels of the ground of one short word
constexpr int lowestBlock = 12;
constexpr int narrowestFrame = 40; ///< pixels of a button or a cell
constexpr int lowestFrame = 14;
constexpr int frameWidth = 3;
constexpr int frameCorner = 8;
constexpr size_t mostOfCorner = 8; ///< pixels
constexpr int cornerBar = 16;      ///< pixels
constexpr int cursorShape = 17;    ///< times its width: higher than any letter of one stroke
constexpr int narrowestCell = 6;   ///< pixels of a terminal's letter
constexpr int widestCursor = 3;    ///< pixels

/// A connected part of the picture.
struct Part
{
    std::vector<int> pixels;
    QRect box;
    int inside = 0; ///< pixels that have their neighbours around them in the part
};

class InkPainter
{
public:
    InkPainter(const QImage &gray, const std::function<bool()> &isStopped)
        : m_isStopped(isStopped)
        , m_width(gray.width())
        , m_height(gray.height())
        , m_values(size_t(m_width) * size_t(m_height))
        , m_grounds(m_values.size())
    {
        for (int y = 0; y < m_height; ++y)
            std::copy_n(gray.constScanLine(y), m_width, m_values.begin() + std::ptrdiff_t(y) * m_width);
    }

    QImage paint()
    {
        findGrounds();
        if (m_groundCount > 0 && !m_isStopped())
            subtractGrounds();
        forEachPart([this](const Part &part) {
            if (isFrame(part))
                dropFrame(part);
        });
        if (!m_isStopped())
            drop(InkStrokes(m_values, m_width, m_height).rules());
        const InkStrokes strokes(m_values, m_width, m_height);
        forEachPart([&](const Part &part) {
            if (isCursor(part) || isBar(part) || isCorner(part) ||
                (isSolid(part) && strokes.isSideBar(part.box)))
                drop(part.pixels);
            else if (strokes.isUnderscore(part.box))
                blacken(part.pixels);
        });
        if (m_isStopped())
            return {};
        QImage ink(m_width, m_height, QImage::Format_Grayscale8);
        for (int y = 0; y < m_height; ++y)
            std::copy_n(m_values.begin() + std::ptrdiff_t(y) * m_width, m_width, ink.scanLine(y));
        return ink;
    }

private:
    int xOf(int pixel) const { return pixel % m_width; }
    int yOf(int pixel) const { return pixel / m_width; }
    bool isRowOfStop(int pixel) const { return xOf(pixel) == 0 && m_isStopped(); }
    bool isInk(int pixel) const { return m_values[size_t(pixel)] < 255 - InkStrokes::faintest; }

    void findGrounds()
    {
        std::vector<uchar> isKnown(m_values.size());
        Part part;
        for (int start = 0; start < int(m_values.size()) && !isRowOfStop(start); ++start) {
            if (isKnown[size_t(start)])
                continue;
            takeFlat(start, isKnown, part);
            if (!isGround(part))
                continue;
            ++m_groundCount;
            for (const int pixel : part.pixels)
                m_grounds[size_t(pixel)] = m_groundCount;
        }
    }

    void takeFlat(int start, std::vector<uchar> &isKnown, Part &part) const
    {
        part.pixels.assign(1, start);
        part.inside = 0;
        isKnown[size_t(start)] = 1;
        int left = xOf(start);
        int right = left;
        for (size_t i = 0; i < part.pixels.size(); ++i) {
            const int pixel = part.pixels[i];
            const int x = xOf(pixel);
            const int y = yOf(pixel);
            left = std::min(left, x);
            right = std::max(right, x);
            int like = 0;
            const auto look = [&](bool isThere, int neighbour) {
                if (!isThere) {
                    ++like;
                } else if (std::abs(m_values[size_t(neighbour)] - m_values[size_t(pixel)]) <= shading) {
                    ++like;
                    if (!isKnown[size_t(neighbour)]) {
                        isKnown[size_t(neighbour)] = 1;
                        part.pixels.push_back(neighbour);
                    }
                }
            };
            look(x > 0, pixel - 1);
            look(x + 1 < m_width, pixel + 1);
            look(y > 0, pixel - m_width);
            look(y + 1 < m_height, pixel + m_width);
            part.inside += like == 4;
        }
        const auto [first, last] = std::minmax_element(part.pixels.begin(), part.pixels.end());
        part.box = QRect(QPoint(left, yOf(*first)), QPoint(right, yOf(*last)));
    }

    bool isGround(const Part &part) const
    {
        const int width = part.box.width();
        const int height = part.box.height();
        const auto area = qsizetype(part.pixels.size());
        const bool isThick = part.inside * 3 >= area;
        // What little was asked for may be mostly ground.
        const bool isMost = area * 3 >= qsizetype(m_width) * m_height;
        if (isThick && ((width >= wideGround && height >= highGround) || isMost))
            return true;
        if (width < narrowestBlock || height < lowestBlock)
            return false;
        const qsizetype full = qsizetype(width) * height;
        // Letters may touch the ends of a selection.
        return (width * 2 >= height * 3 ? area * 3 >= full : area * 20 >= full * 11) &&
               isFramed(part, 80, width >= height * 2 ? 25 : 50);
    }

    /// Whether it is straight on all sides, each by so many of 100 pixels.
    bool isFramed(const Part &part, int flat, int upright) const
    {
        std::array<int, frameWidth> top{}, bottom{}, left{}, right{};
        const auto count = [](std::array<int, frameWidth> &lines, int distance) {
            if (distance < frameWidth)
                ++lines[size_t(distance)];
        };
        for (const int pixel : part.pixels) {
            count(top, yOf(pixel) - part.box.top());
            count(bottom, part.box.bottom() - yOf(pixel));
            count(left, xOf(pixel) - part.box.left());
            count(right, part.box.right() - xOf(pixel));
        }
        const auto isStraight = [](const std::array<int, frameWidth> &lines, int length, int percent) {
            return *std::max_element(lines.begin(), lines.end()) * 100 >= length * percent;
        };
        return isStraight(top, part.box.width(), flat) && isStraight(bottom, part.box.width(), flat) &&
               isStraight(left, part.box.height(), upright) && isStraight(right, part.box.height(), upright);
    }

    /// What is no ground itself stands on the nearest one.
    void subtractGrounds()
    {
        std::vector<uchar> grounds = m_values;
        std::vector<quint16> distances(m_values.size());
        std::ranges::transform(m_grounds, distances.begin(), [](int ground) {
            return ground ? quint16(0) : std::numeric_limits<quint16>::max();
        });
        const auto spread = [&](int pixel, int neighbour) {
            const int distance = distances[size_t(neighbour)] + 1;
            if (distance < distances[size_t(pixel)]) {
                distances[size_t(pixel)] = quint16(distance);
                grounds[size_t(pixel)] = grounds[size_t(neighbour)];
            }
        };
        const int count = int(m_values.size());
        for (int i = 1; i < count; ++i) {
            if (i % m_width)
                spread(i, i - 1);
            if (i >= m_width)
                spread(i, i - m_width);
        }
        for (int i = count - 2; i >= 0; --i) {
            if ((i + 1) % m_width)
                spread(i, i + 1);
            if (i + m_width < count)
                spread(i, i + m_width);
        }
        for (size_t i = 0; i < m_values.size(); ++i) {
            const int ground = grounds[i];
            const int most = std::max(ground, 255 - ground);
            m_values[i] = m_grounds[i] ? 255 : uchar(255 - std::abs(m_values[i] - ground) * 255 / most);
        }
    }

    template <class Work>
    void forEachPart(const Work &work)
    {
        std::vector<uchar> isKnown(m_values.size());
        Part part;
        for (int start = 0; start < int(m_values.size()) && !isRowOfStop(start); ++start) {
            if (!isKnown[size_t(start)] && isInk(start)) {
                takeInk(start, isKnown, part);
                work(part);
            }
        }
    }

    /// The border of a button, a cell or a selection. Bold text may be as straight, but not without a gap.
    bool isFrame(const Part &part) const
    {
        const QRect &box = part.box;
        if (box.width() < narrowestFrame || box.height() < lowestFrame || !isFramed(part, 80, 50))
            return false;
        const auto isLong = [&](int distance) {
            return longestStroke(box.top() + distance, box) * 10 >= box.width() * 8;
        };
        return isLong(0) || isLong(1) || isLong(2);
    }

    int longestStroke(int y, const QRect &box) const
    {
        int longest = 0;
        int length = 0;
        for (int x = box.left(); x <= box.right(); ++x) {
            length = isInk(y * m_width + x) ? length + 1 : 0;
            longest = std::max(longest, length);
        }
        return longest;
    }

    static bool isSolid(const Part &part)
    {
        return qsizetype(part.pixels.size()) * 10 >= qsizetype(part.box.width()) * part.box.height() * 9;
    }

    /// A thin one, or one of a terminal: a letter's cell, filled or outlined.
    bool isCursor(const Part &part) const
    {
        const int width = part.box.width();
        const int height = part.box.height();
        if (width <= widestCursor)
            return height >= width * cursorShape;
        if (width < narrowestCell || height * 2 < width * 3 || height * 2 > width * 5)
            return false;
        const QRect inside = part.box.adjusted(1, 1, -1, -1);
        const bool isOutline = std::ranges::none_of(
            part.pixels, [&](int pixel) { return inside.contains(xOf(pixel), yOf(pixel)); });
        return isSolid(part) || (isOutline && int(part.pixels.size()) >= 2 * (width + height) - 4);
    }

    /// A window's edge, or a strip of what is beside it.
    bool isBar(const Part &part) const
    {
        const QRect &box = part.box;
        const int length = std::max(box.width(), box.height());
        const bool isAtEdge = (box.height() == length && (box.left() == 0 || box.right() == m_width - 1)) ||
                              (box.width() == length && (box.top() == 0 || box.bottom() == m_height - 1));
        const bool isInCorner = (box.left() == 0 || box.right() == m_width - 1) &&
                                box.height() >= cornerBar && (box.top() == 0 || box.bottom() == m_height - 1);
        return isSolid(part) && (isInCorner || length >= (isAtEdge ? highGround : wideGround));
    }

    void takeInk(int start, std::vector<uchar> &isKnown, Part &part) const
    {
        part.pixels.assign(1, start);
        isKnown[size_t(start)] = 1;
        part.box = QRect(xOf(start), yOf(start), 1, 1);
        for (size_t i = 0; i < part.pixels.size(); ++i) {
            const QPoint point(xOf(part.pixels[i]), yOf(part.pixels[i]));
            part.box |= QRect(point, QSize(1, 1));
            for (int y = std::max(point.y() - 1, 0); y <= std::min(point.y() + 1, m_height - 1); ++y) {
                for (int x = std::max(point.x() - 1, 0); x <= std::min(point.x() + 1, m_width - 1); ++x) {
                    const int pixel = y * m_width + x;
                    if (!isKnown[size_t(pixel)] && isInk(pixel)) {
                        isKnown[size_t(pixel)] = 1;
                        part.pixels.push_back(pixel);
                    }
                }
            }
        }
    }

    /// What is inside stays: text may touch the edge.
    void dropFrame(const Part &part)
    {
        const QRect inside = part.box.adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
        const QRect upright = part.box.adjusted(frameCorner, 0, -frameCorner, 0);
        const QRect flat = part.box.adjusted(0, frameCorner, 0, -frameCorner);
        for (const int pixel : part.pixels) {
            const QPoint point(xOf(pixel), yOf(pixel));
            if (!inside.contains(point) || !(upright.contains(point) || flat.contains(point)))
                m_values[size_t(pixel)] = 255;
        }
    }

    /// What softens the corner of a button stands between two grounds.
    bool isCorner(const Part &part) const
    {
        if (part.pixels.size() > mostOfCorner)
            return false;
        int found = 0;
        for (const int pixel : part.pixels) {
            for (const int neighbour : {pixel - 1, pixel + 1, pixel - m_width, pixel + m_width}) {
                const int ground =
                    neighbour >= 0 && neighbour < int(m_grounds.size()) ? m_grounds[size_t(neighbour)] : 0;
                if (ground && found && ground != found)
                    return true;
                if (ground)
                    found = ground;
            }
        }
        return false;
    }

    /// Recognisers take faint underscores for blanks.
    void blacken(const std::vector<int> &pixels)
    {
        for (const int pixel : pixels)
            m_values[size_t(pixel)] /= 4;
    }

    void drop(const std::vector<int> &pixels)
    {
        for (const int pixel : pixels)
            m_values[size_t(pixel)] = 255;
    }

    const std::function<bool()> &m_isStopped;
    const int m_width;
    const int m_height;
    std::vector<uchar> m_values; ///< of the picture, then of its ink: 255 is none
    std::vector<int> m_grounds;  ///< the number of the ground that a pixel is, 0 for none
    int m_groundCount = 0;
};

} // namespace

QImage inkPicture(const QImage &gray, const std::function<bool()> &isStopped)
{
    if (gray.isNull())
        return {};
    Q_ASSERT(gray.format() == QImage::Format_Grayscale8);
    return InkPainter(gray, isStopped).paint();
}

} // namespace tovi
