// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "Platform/Linux/AtspiClient.h"

/// Reading selected text of accessible objects.
namespace tovi::AtspiText {

struct Selection
{
    bool hasText = false;                ///< whether the object tells its text at all
    std::optional<AtspiTextRange> range; ///< what is selected in it; never empty
};
Selection selection(AtspiRequest &request, const AtspiObject &object);

/// A stretch of text without embedded objects.
struct Run
{
    AtspiObject object;
    AtspiTextRange range;
    int lineBreaks = 0; ///< between its first and last visible character
};

struct Content
{
    QString text;
    QList<Run> runs;
    bool embedding = false; ///< whether the range itself holds embedded objects
};
/// The object's own text in the range; where that embeds other objects, `text` is meaningless.
std::optional<Content> plainContent(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range);
/// The text of the range with that of the objects embedded in it, line breaks between blocks. None when it
/// could not be read whole.
std::optional<Content> content(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range);

/// The rectangle around the runs of `object` in the desktop's pixels; none where the application's answers
/// contradict themselves.
std::optional<QRect> bounds(AtspiRequest &request, const AtspiObject &object, const QList<Run> &runs);

} // namespace tovi::AtspiText
