// SPDX-License-Identifier: MIT
#include "UI/TextHeightCache.h"

#include <algorithm>
#include <cmath>
#include <mutex>

#include <QHash>
#include <QTextLayout>

namespace tovi {

namespace {

constexpr qsizetype mostEntries = 600;
// Long paragraphs are laid out in parts, so that one that is too high costs no more than it must.
constexpr qsizetype partLength = 4096;

struct Cache
{
    std::mutex mutex;
    QHash<QString, double> heights;
};

Cache &cache()
{
    static Cache instance;
    return instance;
}

/// The height of a part of a paragraph without its last line, and where that line begins.
struct Measured
{
    double height = 0;
    double lastLineHeight = 0;
    qsizetype lastLineStart = 0;
};

Measured measure(QStringView part, const QFont &font, double width, Qt::LayoutDirection direction)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(direction);
    QTextLayout layout(part.toString(), font);
    layout.setTextOption(option);
    Measured measured;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        measured.height += measured.lastLineHeight;
        measured.lastLineHeight = line.height();
        measured.lastLineStart = line.textStart();
    }
    layout.endLayout();
    return measured;
}

double paragraphHeight(QStringView paragraph, const QFont &font, double width, double limit)
{
    const auto direction = paragraph.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    double height = 0;
    for (;;) {
        const Measured part =
            measure(paragraph.first(std::min(paragraph.size(), partLength)), font, width, direction);
        height += part.height;
        const bool isRest = paragraph.size() <= partLength;
        // A part of a single line cannot be continued at its last one.
        if (isRest || part.lastLineStart == 0 || height > limit)
            return height + part.lastLineHeight;
        paragraph = paragraph.sliced(part.lastLineStart);
    }
}

} // namespace

double TextHeightCache::height(const QString &text, const QFont &font, double width, double limit)
{
    if (text.isEmpty() || !(width > 0))
        return 0;
    const QString key = QStringLiteral("%1|%2|%3|%4|%5")
                            .arg(font.family())
                            .arg(font.pixelSize())
                            .arg(qint64(std::min(width, 1e9)))
                            .arg(text.size())
                            .arg(qHash(text));
    Cache &shared = cache();
    {
        const std::scoped_lock lock(shared.mutex);
        if (const auto known = shared.heights.constFind(key); known != shared.heights.cend())
            return *known;
    }
    double sum = 0;
    for (const QStringView paragraph : QStringView(text).tokenize(u'\n')) {
        sum += paragraphHeight(paragraph, font, width, limit - sum);
        if (sum > limit)
            return std::ceil(sum);
    }
    const std::scoped_lock lock(shared.mutex);
    if (shared.heights.size() > mostEntries)
        shared.heights.clear();
    return *shared.heights.insert(key, std::ceil(sum));
}

} // namespace tovi
