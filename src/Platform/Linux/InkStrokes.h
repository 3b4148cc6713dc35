// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include <QRect>

namespace tovi {

/// Straight strokes in a picture of ink, told from those of letters. Looks at the values, which must stay.
/// Any thread.
class InkStrokes
{
public:
    static constexpr int faintest = 24; ///< of 255: less is no ink

    /// Rows of values, dark on white.
    InkStrokes(const std::vector<uchar> &values, int width, int height)
        : m_values(values)
        , m_width(width)
        , m_height(height)
    {}

    bool isInk(int pixel) const { return m_values[size_t(pixel)] < 255 - faintest; }
    /// Pixels of lines that are longer and thinner than strokes of letters.
    std::vector<int> rules() const;
    /// Whether a solid box is an upright bar before a quotation or a note: longer than the line beside it, or
    /// beside more than one.
    bool isSideBar(const QRect &box) const;
    /// Whether a box is a flat stroke with nothing right below itself and its neighbours.
    bool isUnderscore(const QRect &box) const;

private:
    void addRules(int first, int length, int step, int across, int shape, std::vector<int> &rules) const;
    int widthAt(int pixel, int across) const;
    bool isBlank(const QRect &rect) const;

    const std::vector<uchar> &m_values;
    const int m_width;
    const int m_height;
};

} // namespace tovi
