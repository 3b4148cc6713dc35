// SPDX-License-Identifier: MIT
#include "Platform/Linux/ListBullet.h"

#include <algorithm>

#include "Platform/Linux/TextLinePicture.h"

namespace tovi {

namespace {

constexpr int faintest = 200; ///< of 255, which is none: fainter ink softens an edge

class Columns
{
public:
    Columns(const QImage &ink, const QRect &line)
        : m_ink(ink)
        , m_line(line)
    {}

    /// From a column on, the first one with or without ink.
    int next(int x, bool hasInk) const
    {
        while (x <= m_line.right() && rows(x, x).isEmpty() == hasInk)
            ++x;
        return x;
    }

    /// The ink of some columns.
    QRect rows(int left, int right) const
    {
        QRect box;
        for (int y = m_line.top(); y <= m_line.bottom(); ++y) {
            const uchar *row = m_ink.constScanLine(y);
            if (std::any_of(row + left, row + right + 1, [](uchar value) { return value < faintest; }))
                box |= QRect(left, y, right - left + 1, 1);
        }
        return box;
    }

    /// How much of a box is black, of 100.
    int blackness(const QRect &box) const
    {
        qint64 sum = 0;
        for (int y = box.top(); y <= box.bottom(); ++y) {
            const uchar *row = m_ink.constScanLine(y);
            for (int x = box.left(); x <= box.right(); ++x)
                sum += 255 - row[x];
        }
        return int(sum * 100 / (qint64(255) * box.width() * box.height()));
    }

    /// The row that what begins at a column stands on: none below has so much less ink than the one above.
    int baseline(int left) const
    {
        int baseline = m_line.bottom();
        int most = 0;
        int above = 0;
        for (int y = m_line.center().y(); y <= m_line.bottom() + 1; ++y) {
            const int count = y <= m_line.bottom() ? inkOfRow(y, left) : 0;
            if (above - count >= most) {
                most = above - count;
                baseline = y - 1;
            }
            above = count;
        }
        return baseline;
    }

private:
    int inkOfRow(int y, int left) const
    {
        const uchar *row = m_ink.constScanLine(y);
        return int(std::count_if(row + left, row + m_line.right() + 1,
                                 [](uchar value) { return value < faintest; }));
    }

    const QImage &m_ink;
    const QRect m_line;
};

} // namespace

std::optional<ListBullet> listBullet(const QImage &ink, const QRect &line)
{
    const Columns columns(ink, line);
    const int begin = columns.next(line.left(), true);
    const int end = columns.next(begin, false);
    if (begin > line.right())
        return std::nullopt;
    const QRect box = columns.rows(begin, end - 1);
    const int next = columns.next(end, true);
    const bool isAlone = next > line.right();
    // What follows is read without the bullet, but with a margin.
    const bool isApart = next - end >= textLineMargin && (next - end) * 4 >= line.height();
    const int middle = (box.top() + box.bottom() + 1 - 2 * line.top()) * 50;
    if ((!isAlone && !isApart) || middle < line.height() * 35 || middle > line.height() * 75)
        return std::nullopt;
    const ListBullet bullet{.sign = u'•', .width = next - line.left()};
    const bool isRound = box.width() * 4 >= box.height() * 3 && box.width() * 3 <= box.height() * 4;
    if (isRound && box.height() >= 2 && box.height() * 100 <= line.height() * 60) {
        // Letters are larger, or less black and stand where the others do.
        const int blackness = columns.blackness(box);
        const bool isSmall = box.height() * 100 <= line.height() * 45 && blackness >= 30;
        const bool isOnBaseline = !isAlone && box.bottom() >= columns.baseline(next);
        if ((isSmall && !isOnBaseline) || blackness >= 80)
            return bullet;
    }
    const bool isFlat = box.width() * 2 >= box.height() * 3 && box.height() * 5 <= line.height() &&
                        box.width() * 10 <= line.height() * 6;
    if (isFlat && box.width() >= 3)
        return ListBullet{.sign = u'-', .width = bullet.width};
    return std::nullopt;
}

} // namespace tovi
