// SPDX-License-Identifier: MIT
#include "Capture/AccessibilityCapturer.h"

#include <cmath>

#include "Platform/Platform.h"
#include "Text.h"

namespace tovi::AccessibilityCapturer {

namespace {

constexpr std::chrono::milliseconds messagingTimeout{250};
constexpr int examinedElements = 4;

AXElement systemWideElement()
{
    const AXElement systemWide = Platform::current().accessibility().systemWideElement();
    systemWide.setMessagingTimeout(messagingTimeout);
    return systemWide;
}

/// The element that a request answered, with the time-out set.
std::optional<AXElement> answeredElement(const AXResult &result)
{
    const auto *element = result.get<AXElement>();
    if (!element || !*element)
        return {};
    element->setMessagingTimeout(messagingTimeout);
    return *element;
}

bool isFinite(const QRectF &rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

} // namespace

std::optional<AXElement> focusedElement()
{
    return answeredElement(systemWideElement().attribute(QStringLiteral("AXFocusedUIElement")));
}

std::optional<QString> stringAttribute(const AXElement &element, const QString &name)
{
    const AXResult result = element.attribute(name);
    const auto *text = result.get<QString>();
    return text ? std::optional(*text) : std::nullopt;
}

std::optional<QString> selectedText(const AXElement &element)
{
    const auto text = stringAttribute(element, QStringLiteral("AXSelectedText"));
    return text && !isBlank(*text) ? text : selectedTextByTextMarkerRange(element);
}

std::optional<QString> selectedTextByTextMarkerRange(const AXElement &element)
{
    const AXResult range = element.attribute(QStringLiteral("AXSelectedTextMarkerRange"));
    if (!range.get<AXTextMarkerRange>())
        return {};
    const AXResult result =
        element.parameterizedAttribute(QStringLiteral("AXStringForTextMarkerRange"), range.value);
    const auto *text = result.get<QString>();
    return text && !isBlank(*text) ? std::optional(*text) : std::nullopt;
}

std::optional<QRectF> selectionBounds(const AXElement &element, double primaryHeight)
{
    const AXResult range = element.attribute(QStringLiteral("AXSelectedTextRange"));
    if (!range.get<AXRange>())
        return {};
    const AXResult result = element.parameterizedAttribute(QStringLiteral("AXBoundsForRange"), range.value);
    const auto *answer = result.get<QRectF>();
    if (!answer || !isFinite(*answer))
        return {};
    const QRectF rect = answer->normalized();
    if (rect.isEmpty())
        return {};
    return QRectF(rect.left(), primaryHeight - rect.bottom(), rect.width(), rect.height());
}

std::optional<AXElement> element(QPointF screenPoint, double primaryHeight)
{
    return answeredElement(systemWideElement().elementAtPosition(
        static_cast<float>(screenPoint.x()), static_cast<float>(primaryHeight - screenPoint.y())));
}

std::optional<Selection> selectedText(QPointF screenPoint, double primaryHeight)
{
    auto candidate = element(screenPoint, primaryHeight);
    for (int examined = 1; candidate; ++examined) {
        if (const auto text = selectedText(*candidate))
            return Selection{*text, *candidate, selectionBounds(*candidate, primaryHeight)};
        if (examined == examinedElements)
            break;
        candidate = answeredElement(candidate->attribute(QStringLiteral("AXParent")));
    }
    return {};
}

} // namespace tovi::AccessibilityCapturer
