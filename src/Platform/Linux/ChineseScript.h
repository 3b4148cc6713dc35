// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>
#include <utility>

#include <QImage>

#include "Platform/Linux/TesseractEngines.h"

namespace tovi {

constexpr bool isIdeograph(QChar c)
{
    return (c.unicode() >= 0x3400 && c.unicode() <= 0x9fff) ||
           (c.unicode() >= 0xf900 && c.unicode() <= 0xfaff);
}

/// Tells the script of Chinese lines: each character that has two forms is compared with both of them as a
/// font draws them, since the data for one script read the other and write it their way. What was drawn is
/// kept for the next line. Any thread.
class ChineseScript
{
public:
    static constexpr double doubtfulLook = 0.4; ///< of a paragraph
    static constexpr double clearLook = 1;      ///< of a line: its paragraph may be in the other script

    /// How much more the picture of a line looks Traditional than Simplified, of what is read in it: about
    /// 0.3 for each character that is clear, below 0 for Simplified, and little more than the clear look. 0
    /// without such characters or a font that has them.
    double traditionalLook(const TesseractReading &reading, const QImage &line);

private:
    struct Shape
    {
        QImage image;
        int sum = 0;
        int squares = 0;
    };

    static Shape draw(QChar character, int size);
    static double correlation(const Shape &shape, const QImage &line, int left, int top);
    const Shape &shape(QChar character, int size);
    double likeness(QChar character, const QImage &line, int center, int typicalSize);

    std::mutex m_mutex;
    std::map<std::pair<char16_t, int>, Shape> m_shapes; // under the mutex; they stay where they are
};

} // namespace tovi
