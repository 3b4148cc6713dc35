// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiElement.h"

#include "Platform/Linux/AtspiTree.h"

namespace tovi {

namespace {

/// A marker range's data.
struct MarkerRange
{
    AtspiObject object;
    AtspiTextRange range;
};

template <class Impl, class... Arguments>
AXResult elementResult(Arguments &&...arguments)
{
    return {AXError::None, AXElement(std::make_shared<Impl>(std::forward<Arguments>(arguments)...))};
}

} // namespace

AXResult AtspiSystemWideElement::attribute(const QString &name)
{
    if (name == QLatin1String("AXFocusedUIElement"))
        return focusedElement();
    return {AXError::AttributeUnsupported, {}};
}

AXResult AtspiSystemWideElement::focusedElement()
{
    AtspiRequest request(*m_context->client, m_timeout);
    const auto window = m_context->activeWindow->activeWindow();
    if (!window)
        return {AXError::NoValue, {}};
    // Where no application can be asked, all are like those that tell nothing.
    if (request.error() != AXError::None)
        return elementResult<AtspiOpaqueWindowElement>(m_context, *window);
    const auto frame = AtspiTree::windowObject(request, *window);
    const auto focused =
        frame ? AtspiTree::focusedObject(request, *frame, window->hasKeyboard) : std::nullopt;
    if (focused) {
        const AtspiText::Selection own = AtspiText::selection(request, *focused);
        if (own.range)
            return elementResult<AtspiElement>(m_context, *focused);
        // The focus may be on a link or a button of a page while text is selected elsewhere in the page.
        const auto document = AtspiTree::enclosingDocument(request, *focused);
        if (document && *document != *focused && AtspiText::selection(request, *document).hasText &&
            request.error() == AXError::None)
            return elementResult<AtspiElement>(m_context, *document);
        if (own.hasText && request.error() == AXError::None)
            return elementResult<AtspiElement>(m_context, *focused);
    }
    if (request.error() != AXError::None)
        return request.failure(AXError::CannotComplete);
    return elementResult<AtspiOpaqueWindowElement>(m_context, *window);
}

AXResult AtspiSystemWideElement::elementAtPosition(float x, float y)
{
    AtspiRequest request(*m_context->client, m_timeout);
    if (request.error() != AXError::None)
        return request.failure(AXError::CannotComplete);
    const auto window = m_context->activeWindow->activeWindow();
    const auto frame = window ? AtspiTree::windowObject(request, *window) : std::nullopt;
    const QPointF pixels = m_context->scale.toPixels(QPointF(x, y));
    // Written so that numbers that are none fail it too.
    if (!frame || !(std::abs(pixels.x()) < 1e6 && std::abs(pixels.y()) < 1e6))
        return request.failure(AXError::NoValue);
    const auto found = AtspiTree::objectAt(request, *frame, pixels.toPoint());
    return found ? elementResult<AtspiElement>(m_context, *found) : request.failure(AXError::NoValue);
}

bool AtspiSystemWideElement::equals(const AXElementImpl &other) const
{
    return dynamic_cast<const AtspiSystemWideElement *>(&other);
}

AXResult AtspiOpaqueWindowElement::attribute(const QString &name)
{
    if (name != QLatin1String("AXSelectedText"))
        return {AXError::AttributeUnsupported, {}};
    const QDeadlineTimer deadline(m_timeout.load(), Qt::PreciseTimer);
    const PrimarySelection::Answer answer = m_context->primarySelection->read(m_window, deadline);
    switch (answer.status) {
    case PrimarySelection::Status::Text:
        return {AXError::None, answer.text};
    case PrimarySelection::Status::NoText:
    case PrimarySelection::Status::NotOwner:
        return {AXError::NoValue, {}};
    case PrimarySelection::Status::TimedOut:
        return {AXError::TimedOut, {}};
    case PrimarySelection::Status::Unavailable:
        break;
    }
    return {AXError::CannotComplete, {}};
}

bool AtspiOpaqueWindowElement::equals(const AXElementImpl &other) const
{
    const auto *window = dynamic_cast<const AtspiOpaqueWindowElement *>(&other);
    return window && window->m_window == m_window;
}

AXResult AtspiElement::attribute(const QString &name)
{
    using Reader = AXResult (AtspiElement::*)(AtspiRequest &);
    static const QHash<QString, Reader> readers{
        {QStringLiteral("AXSelectedText"), &AtspiElement::selectedText},
        {QStringLiteral("AXSelectedTextRange"), &AtspiElement::selectedTextRange},
        {QStringLiteral("AXSelectedTextMarkerRange"), &AtspiElement::selectedTextMarkerRange},
        {QStringLiteral("AXParent"), &AtspiElement::parent},
    };
    const Reader reader = readers.value(name);
    if (!reader)
        return {AXError::AttributeUnsupported, {}};
    AtspiRequest request(*m_context->client, m_timeout);
    return request.error() == AXError::None ? (this->*reader)(request) : request.failure(AXError::NotTrusted);
}

AXResult AtspiElement::parameterizedAttribute(const QString &name, const AXValue &parameter)
{
    using Reader = AXResult (AtspiElement::*)(AtspiRequest &, const AXValue &);
    static const QHash<QString, Reader> readers{
        {QStringLiteral("AXStringForTextMarkerRange"), &AtspiElement::stringForTextMarkerRange},
        {QStringLiteral("AXBoundsForRange"), &AtspiElement::boundsForRange},
    };
    const Reader reader = readers.value(name);
    if (!reader)
        return {AXError::AttributeUnsupported, {}};
    AtspiRequest request(*m_context->client, m_timeout);
    return request.error() == AXError::None ? (this->*reader)(request, parameter)
                                            : request.failure(AXError::NotTrusted);
}

bool AtspiElement::equals(const AXElementImpl &other) const
{
    const auto *element = dynamic_cast<const AtspiElement *>(&other);
    return element && element->m_object == m_object;
}

AXResult AtspiElement::selectedText(AtspiRequest &request)
{
    const AtspiText::Selection selection = AtspiText::selection(request, m_object);
    if (!selection.range)
        return request.failure(selection.hasText ? AXError::NoValue : AXError::AttributeUnsupported);
    const auto content = AtspiText::plainContent(request, m_object, *selection.range);
    if (!content)
        return request.failure(AXError::CannotComplete);
    if (content->embedding) // text of several objects: a marker range gives it
        return {AXError::NoValue, {}};
    remember(*selection.range, content->runs);
    return {AXError::None, content->text};
}

AXResult AtspiElement::selectedTextRange(AtspiRequest &request)
{
    const AtspiText::Selection selection = AtspiText::selection(request, m_object);
    if (!selection.range)
        return request.failure(selection.hasText ? AXError::NoValue : AXError::AttributeUnsupported);
    const auto [start, end] = *selection.range;
    return {AXError::None, AXRange{start, end - start}};
}

AXResult AtspiElement::selectedTextMarkerRange(AtspiRequest &request)
{
    const AtspiText::Selection selection = AtspiText::selection(request, m_object);
    if (!selection.range)
        return request.failure(selection.hasText ? AXError::NoValue : AXError::AttributeUnsupported);
    return {AXError::None,
            AXTextMarkerRange{std::make_shared<const MarkerRange>(MarkerRange{m_object, *selection.range})}};
}

AXResult AtspiElement::parent(AtspiRequest &request)
{
    const auto parent = AtspiTree::parent(request, m_object);
    return parent ? elementResult<AtspiElement>(m_context, *parent) : request.failure(AXError::NoValue);
}

AXResult AtspiElement::stringForTextMarkerRange(AtspiRequest &request, const AXValue &parameter)
{
    const auto *marker = std::get_if<AXTextMarkerRange>(&parameter);
    const auto *range = marker ? static_cast<const MarkerRange *>(marker->data.get()) : nullptr;
    if (!range || range->object != m_object)
        return {AXError::NoValue, {}};
    const auto content = AtspiText::content(request, m_object, range->range);
    if (!content)
        return request.failure(AXError::CannotComplete);
    remember(range->range, content->runs);
    return {AXError::None, content->text};
}

AXResult AtspiElement::boundsForRange(AtspiRequest &request, const AXValue &parameter)
{
    const auto *range = std::get_if<AXRange>(&parameter);
    if (!range || range->location < 0 || range->length <= 0 ||
        range->length > std::numeric_limits<int>::max() - range->location)
        return {AXError::NoValue, {}};
    const auto found = runs(request, {range->location, range->location + range->length});
    const auto pixels = found ? AtspiText::bounds(request, m_object, *found) : std::nullopt;
    return pixels ? AXResult{AXError::None, m_context->scale.toPoints(QRectF(*pixels))}
                  : request.failure(AXError::NoValue);
}

std::optional<QList<AtspiText::Run>> AtspiElement::runs(AtspiRequest &request, AtspiTextRange range)
{
    {
        const std::scoped_lock lock(m_mutex);
        if (m_readRange == range)
            return m_runs;
    }
    const auto content = AtspiText::content(request, m_object, range);
    return content ? std::optional(content->runs) : std::nullopt;
}

void AtspiElement::remember(AtspiTextRange range, const QList<AtspiText::Run> &runs)
{
    const std::scoped_lock lock(m_mutex);
    m_readRange = range;
    m_runs = runs;
}

} // namespace tovi
