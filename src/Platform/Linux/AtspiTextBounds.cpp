// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiNames.h"
#include "Platform/Linux/AtspiText.h"

namespace tovi::AtspiText {

namespace {

/// The rectangle of a run from what the application answered about it, and about its first and last character
/// where it has several lines.
std::optional<QRect> runRectangle(const Run &run, const DBusReply *answer)
{
    const QRect whole = AtspiReply::rectangle(answer[0]).value_or(QRect());
    if (run.lineBreaks == 0)
        return whole;
    // Some editors answer with one line's rectangle for text of several lines. Then the first and the last
    // character may still tell; but a wrong place is worse than none.
    const QRect first = AtspiReply::rectangle(answer[1]).value_or(QRect());
    const QRect last = AtspiReply::rectangle(answer[2]).value_or(QRect());
    const auto isHighEnough = [&](const QRect &rectangle) {
        return rectangle.height() >= qint64(first.height()) * (run.lineBreaks + 1) * 2 / 3;
    };
    if (isHighEnough(whole))
        return whole;
    const QRect ends = whole.united(first).united(last);
    return isHighEnough(ends) && last.top() > first.top() ? std::optional(ends) : std::nullopt;
}

/// Some editors place the text of every line where the first one is.
bool placesLinesAlike(AtspiRequest &request, const Run &run)
{
    constexpr int lookBack = 1000;
    const AtspiTextRange before{std::max(0, run.range.start - lookBack), run.range.start};
    const auto text = AtspiReply::text(
        request.call(request.method(run.object, Atspi::text, "GetText", "ii", before.start, before.end)));
    if (!text || !text->contains(QLatin1Char('\n')))
        return false;
    std::vector<DBusMessage> questions;
    for (const int offset : {before.start, before.end})
        questions.push_back(request.method(run.object, Atspi::text, "GetCharacterExtents", "iu", offset,
                                           Atspi::screenCoordinates));
    const std::vector<DBusReply> replies = request.callAll(questions);
    const auto earlier = AtspiReply::rectangle(replies[0]);
    const auto later = AtspiReply::rectangle(replies[1]);
    return earlier && later && later->top() <= earlier->top();
}

} // namespace

std::optional<QRect> bounds(AtspiRequest &request, const AtspiObject &object, const QList<Run> &runs)
{
    if (!runs.isEmpty() && request.isOfToolkit(object, "Qt") && placesLinesAlike(request, runs.first()))
        return std::nullopt;
    std::vector<DBusMessage> questions;
    questions.push_back(
        request.method(object, Atspi::component, "GetExtents", "u", Atspi::screenCoordinates));
    for (const Run &run : runs) {
        questions.push_back(request.method(run.object, Atspi::text, "GetRangeExtents", "iiu", run.range.start,
                                           run.range.end, Atspi::screenCoordinates));
        if (run.lineBreaks == 0)
            continue;
        for (const int offset : {run.range.start, run.range.end - 1})
            questions.push_back(request.method(run.object, Atspi::text, "GetCharacterExtents", "iu", offset,
                                               Atspi::screenCoordinates));
    }
    const std::vector<DBusReply> replies = request.callAll(questions);
    QRect united;
    std::size_t next = 1;
    for (const Run &run : runs) {
        const auto rectangle = runRectangle(run, &replies[next]);
        next += run.lineBreaks == 0 ? 1 : 3;
        if (!rectangle)
            return std::nullopt;
        if (rectangle->width() > 0 && rectangle->height() > 0)
            united = united.united(*rectangle);
    }
    const QRect visible = AtspiReply::rectangle(replies[0]).value_or(united).intersected(united);
    return visible.isEmpty() ? std::nullopt : std::optional(visible);
}

} // namespace tovi::AtspiText
