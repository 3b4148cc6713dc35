// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QPointF>
#include <QRectF>
#include <QString>

#include "Platform/Accessibility.h"

namespace tovi {

/// Reads the selection of other applications through the accessibility service, without touching the
/// clipboard or any key. Whatever goes wrong, the operation yields nothing. The calls block (0.25 s at most
/// for each request), so never on the main thread.
///
/// Points and rectangles are in screen coordinates (origin bottom-left of the primary screen, y up);
/// `primaryHeight` is the height of that screen in points. Texts are never blank and never trimmed.
namespace AccessibilityCapturer {

struct Selection
{
    QString text;
    AXElement element; ///< the one that answered
    std::optional<QRectF> bounds;
};

std::optional<AXElement> focusedElement();
/// The attribute's value when it is a text, blank ones included.
std::optional<QString> stringAttribute(const AXElement &element, const QString &name);
std::optional<QString> selectedText(const AXElement &element);
/// The selection of elements that only know ranges of their document, as web pages do.
std::optional<QString> selectedTextByTextMarkerRange(const AXElement &element);
std::optional<QRectF> selectionBounds(const AXElement &element, double primaryHeight);

std::optional<AXElement> element(QPointF screenPoint, double primaryHeight);
/// The selection of the element under the point, or of one of its three nearest ancestors.
std::optional<Selection> selectedText(QPointF screenPoint, double primaryHeight);

} // namespace AccessibilityCapturer

} // namespace tovi
