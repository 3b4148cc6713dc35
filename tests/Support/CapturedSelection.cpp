// SPDX-License-Identifier: MIT
#include "Support/CapturedSelection.h"

#include <ostream>

#include <QElapsedTimer>

void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}

namespace tovi {

namespace {

double millisecondsSince(QElapsedTimer &timer)
{
    const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    timer.restart();
    return elapsed;
}

} // namespace

AXElement withTimeout(const AXElement &element, Clock::Duration timeout)
{
    element.setMessagingTimeout(timeout);
    return element;
}

AXResult selectedText(const AXElement &element, bool *byMarkerRange)
{
    const AXResult plain = element.attribute(QStringLiteral("AXSelectedText"));
    const auto *text = plain.get<QString>();
    if (text && !text->trimmed().isEmpty())
        return plain;
    const AXResult range = element.attribute(QStringLiteral("AXSelectedTextMarkerRange"));
    if (range.error != AXError::None)
        return plain.error == AXError::None ? range : plain;
    *byMarkerRange = true;
    return element.parameterizedAttribute(QStringLiteral("AXStringForTextMarkerRange"), range.value);
}

Captured captureSelection(const AXElement &systemWideElement, Clock::Duration timeout)
{
    Captured captured;
    QElapsedTimer timer;
    timer.start();
    const AXResult focused =
        withTimeout(systemWideElement, timeout).attribute(QStringLiteral("AXFocusedUIElement"));
    captured.focusMilliseconds = millisecondsSince(timer);
    captured.error = focused.error;
    const auto *element = focused.get<AXElement>();
    if (!element)
        return captured;
    withTimeout(*element, timeout);
    const AXResult text = selectedText(*element, &captured.byMarkerRange);
    captured.textMilliseconds = millisecondsSince(timer);
    captured.error = text.error;
    if (const auto *value = text.get<QString>())
        captured.text = *value;
    const AXResult range = element->attribute(QStringLiteral("AXSelectedTextRange"));
    if (range.error == AXError::None) {
        const AXResult bounds =
            element->parameterizedAttribute(QStringLiteral("AXBoundsForRange"), range.value);
        if (const auto *rectangle = bounds.get<QRectF>())
            captured.bounds = *rectangle;
    }
    captured.boundsMilliseconds = millisecondsSince(timer);
    return captured;
}

} // namespace tovi
