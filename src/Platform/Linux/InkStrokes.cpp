// SPDX-License-Identifier: MIT
#include "Platform/Linux/InkStrokes.h"

#include <algorithm>
#include <cstdlib>

namespace tovi {

namespace {

constexpr int uprightRule = 24; ///< times its width: as long as no stroke of a letter
constexpr int flatRule = 40;
constexpr int widestRule = 4; ///< pixels
constexpr int widestBar = 8;  ///< pixels, softened sides among them
constexpr int lowestBar = 18; ///< pixels
constexpr int barShape = 7;   ///< times its width: the sign that separates is thinner
constexpr int shortestUnderscore = 5;
constexpr int lowestLine = 5; ///< pixels
constexpr int nearBar = 60;   ///< pixels to its right, where a line has begun

} // namespace

std::vector<int> InkStrokes::rules() const
{
    std::vector<int> rules;
    for (int y = 0; y < m_height; ++y)
        addRules(y * m_width, m_width, 1, m_width, flatRule, rules);
    for (int x = 0; x < m_width; ++x)
        addRules(x, m_height, m_width, 1, uprightRule, rules);
    return rules;
}

bool InkStrokes::isSideBar(const QRect &box) const
{
    if (box.width() > widestBar || box.height() < lowestBar || box.height() * 2 < box.width() * 5)
        return false;
    const int begin = box.right() + 1;
    const QRect right(begin, box.top(), std::min(nearBar, m_width - begin), box.height());
    const int before = std::min(box.height(), box.left());
    if (right.width() <= 0 || !isBlank({begin, box.top(), 2, box.height()}) ||
        !isBlank({box.left() - before, box.top(), before, box.height()}))
        return false;
    std::vector<QRect> lines;
    for (int y = right.top(); y <= right.bottom(); ++y) {
        const QRect row(right.left(), y, right.width(), 1);
        if (isBlank(row))
            continue;
        if (!lines.empty() && lines.back().bottom() == y - 1)
            lines.back() |= row;
        else
            lines.push_back(row);
    }
    if (lines.empty())
        return false;
    const auto count =
        std::ranges::count_if(lines, [](const QRect &line) { return line.height() >= lowestLine; });
    if (count != 1)
        return count > 1;
    return (box.left() == 0 || box.height() <= box.width() * barShape) &&
           lines.front().top() >= box.top() + 2 && lines.back().bottom() <= box.bottom() - 2 &&
           box.height() * 10 >= (lines.back().bottom() - lines.front().top() + 1) * 13;
}

bool InkStrokes::isUnderscore(const QRect &box) const
{
    if (box.height() > 2 || box.width() < shortestUnderscore || box.width() < box.height() * 4)
        return false;
    const int left = std::max(box.left() - box.width(), 0);
    const int below = box.bottom() + 2;
    return isBlank({left, below, box.right() + box.width() - left + 1, std::clamp(m_height - below, 0, 1)});
}

bool InkStrokes::isBlank(const QRect &rect) const
{
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= std::min(rect.right(), m_width - 1); ++x) {
            if (isInk(y * m_width + x))
                return false;
        }
    }
    return true;
}

/// Of one row or column, whose pixels are a step apart, and those across it another.
void InkStrokes::addRules(int first, int length, int step, int across, int shape,
                          std::vector<int> &rules) const
{
    std::vector<int> widths;
    int begin = 0;
    for (int i = 0; i <= length; ++i) {
        const int pixel = first + i * step;
        if (i < length && isInk(pixel) &&
            (i == begin || std::abs(m_values[size_t(pixel)] - m_values[size_t(pixel - step)]) <= faintest))
            continue;
        if (i - begin >= shape) {
            widths.clear();
            for (int k = begin; k < i; ++k)
                widths.push_back(widthAt(first + k * step, across));
            const auto middle = widths.begin() + std::ptrdiff_t(widths.size() / 2);
            std::nth_element(widths.begin(), middle, widths.end());
            if (*middle <= widestRule && i - begin >= shape * *middle) {
                for (int k = begin; k < i; ++k)
                    rules.push_back(first + k * step);
            }
        }
        begin = i < length && isInk(pixel) ? i : i + 1;
    }
}

int InkStrokes::widthAt(int pixel, int across) const
{
    int width = 1;
    for (const int step : {across, -across}) {
        int next = pixel + step;
        for (int i = 0; i < widestRule && next >= 0 && next < int(m_values.size()) && isInk(next); ++i) {
            ++width;
            next += step;
        }
    }
    return width;
}

} // namespace tovi
