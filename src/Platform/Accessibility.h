// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <variant>

#include <QList>
#include <QRectF>
#include <QString>

#include "Platform/Clock.h"

namespace tovi {

/// Why an accessibility request gave no value.
enum class AXError {
    None,
    NotTrusted,           ///< the session's accessibility bus is off or missing
    AttributeUnsupported, ///< the element does not have the attribute
    NoValue,              ///< the attribute exists and is empty
    CannotComplete,       ///< the application is gone or answered with an error
    TimedOut,             ///< no answer within the element's messaging time-out
};

/// A range of characters in the application's own counting; only to be handed back to the same element.
struct AXRange
{
    int location = 0;
    int length = 0;
    bool operator==(const AXRange &) const = default;
};

/// An opaque range of a document, as web views select it; only to be handed back to the same element.
struct AXTextMarkerRange
{
    std::shared_ptr<const void> data;
    bool operator==(const AXTextMarkerRange &) const = default;
};

class AXElement;
/// Rectangles are in the accessibility coordinates: points, origin top-left of the primary screen, y down.
using AXValue = std::variant<std::monostate, QString, bool, AXElement, QList<AXElement>, AXRange, QRectF,
                             AXTextMarkerRange>;

struct AXResult;

/// One object of another application's accessibility tree, as a backend represents it.
class AXElementImpl
{
public:
    virtual ~AXElementImpl() = default;
    virtual AXResult attribute(const QString &name) = 0;
    virtual AXResult parameterizedAttribute(const QString &name, const AXValue &parameter) = 0;
    virtual AXError performAction(const QString &name) = 0;
    /// Only the system-wide element answers this. Accessibility coordinates.
    virtual AXResult elementAtPosition(float x, float y) = 0;
    virtual void setMessagingTimeout(Clock::Duration timeout) = 0;
    virtual bool equals(const AXElementImpl &other) const = 0;
};

/// Handle of an accessibility object. Requests block the calling thread (never the main one) for at most the
/// messaging time-out each.
class AXElement
{
public:
    AXElement() = default;
    explicit AXElement(std::shared_ptr<AXElementImpl> impl)
        : m_impl(std::move(impl))
    {}

    AXResult attribute(const QString &name) const;
    AXResult parameterizedAttribute(const QString &name, const AXValue &parameter) const;
    AXError performAction(const QString &name) const;
    AXResult elementAtPosition(float x, float y) const;
    void setMessagingTimeout(Clock::Duration timeout) const;

    explicit operator bool() const { return static_cast<bool>(m_impl); }
    bool operator==(const AXElement &other) const;

private:
    std::shared_ptr<AXElementImpl> m_impl;
};

struct AXResult
{
    AXError error = AXError::None;
    AXValue value;

    /// The value when the request succeeded and it has this type, else nothing.
    template <class T>
    const T *get() const
    {
        return error == AXError::None ? std::get_if<T>(&value) : nullptr;
    }
};

/// The desktop's accessibility service: other applications' interface trees.
class Accessibility
{
public:
    virtual ~Accessibility() = default;

    /// Whether this process may read other applications: the session's accessibility bus is on. Answers from
    /// memory, never blocks. Main thread.
    virtual bool isProcessTrusted() = 0;
    /// Asks for trust the desktop's way (here: switches the accessibility bus on). Returns at once. Main
    /// thread.
    virtual void requestTrust() = 0;

    /// Answers "AXFocusedUIElement" and elementAtPosition(). Any thread.
    virtual AXElement systemWideElement() = 0;
    /// The element of an application, which answers "AXMenuBar": the menu bar of its frontmost window. Any
    /// thread.
    virtual AXElement applicationElement(qint64 processIdentifier) = 0;
};

} // namespace tovi
