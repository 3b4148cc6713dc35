// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <optional>

#include "Platform/Accessibility.h"

/// For readable messages of failed expectations.
void PrintTo(const QString &text, std::ostream *stream);

namespace tovi {

/// What a capture through the accessibility service found, and how long each step took.
struct Captured
{
    AXError error = AXError::NoValue; ///< of the first request that failed
    QString text;
    bool byMarkerRange = false;
    std::optional<QRectF> bounds;
    double focusMilliseconds = 0;
    double textMilliseconds = 0;
    double boundsMilliseconds = 0;
};

/// The messaging time-out of a capture.
inline constexpr std::chrono::milliseconds captureTimeout{250};
AXElement withTimeout(const AXElement &element, Clock::Duration timeout = captureTimeout);
/// The selected text of one element: as such, else of its marker range.
AXResult selectedText(const AXElement &element, bool *byMarkerRange);
/// Focused element, its selected text, its bounds. Blocks; not for the main thread.
Captured captureSelection(const AXElement &systemWideElement, Clock::Duration timeout = captureTimeout);

} // namespace tovi
