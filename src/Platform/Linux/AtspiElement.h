// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <optional>

#include "Platform/Accessibility.h"
#include "Platform/Linux/AtspiAccessibility.h"
#include "Platform/Linux/AtspiClient.h"
#include "Platform/Linux/AtspiText.h"

namespace tovi {

/// What all kinds of elements have in common: nothing is supported, the time limit is kept.
class AtspiElementBase : public AXElementImpl
{
public:
    explicit AtspiElementBase(std::shared_ptr<const AtspiContext> context)
        : m_context(std::move(context))
    {}

    AXResult attribute(const QString &) override { return {AXError::AttributeUnsupported, {}}; }
    AXResult parameterizedAttribute(const QString &, const AXValue &) override
    {
        return {AXError::AttributeUnsupported, {}};
    }
    AXError performAction(const QString &) override { return AXError::AttributeUnsupported; }
    AXResult elementAtPosition(float, float) override { return {AXError::AttributeUnsupported, {}}; }
    void setMessagingTimeout(Clock::Duration timeout) override { m_timeout = timeout; }

protected:
    const std::shared_ptr<const AtspiContext> m_context;
    std::atomic<Clock::Duration> m_timeout{std::chrono::seconds(1)};
};

/// Answers for the desktop as a whole.
class AtspiSystemWideElement final : public AtspiElementBase
{
public:
    using AtspiElementBase::AtspiElementBase;
    AXResult attribute(const QString &name) override;
    AXResult elementAtPosition(float x, float y) override;
    bool equals(const AXElementImpl &other) const override;

private:
    AXResult focusedElement();
};

/// The frontmost window of an application that tells no text by itself: its selected text is the desktop's
/// primary selection, as long as the application owns that.
class AtspiOpaqueWindowElement final : public AtspiElementBase
{
public:
    AtspiOpaqueWindowElement(std::shared_ptr<const AtspiContext> context, const ActiveWindow &window)
        : AtspiElementBase(std::move(context))
        , m_window(window)
    {}
    AXResult attribute(const QString &name) override;
    bool equals(const AXElementImpl &other) const override;

private:
    const ActiveWindow m_window;
};

/// One object of an application's accessibility tree.
class AtspiElement final : public AtspiElementBase
{
public:
    AtspiElement(std::shared_ptr<const AtspiContext> context, AtspiObject object)
        : AtspiElementBase(std::move(context))
        , m_object(std::move(object))
    {}
    AXResult attribute(const QString &name) override;
    AXResult parameterizedAttribute(const QString &name, const AXValue &parameter) override;
    bool equals(const AXElementImpl &other) const override;

private:
    AXResult selectedText(AtspiRequest &request);
    AXResult selectedTextRange(AtspiRequest &request);
    AXResult selectedTextMarkerRange(AtspiRequest &request);
    AXResult parent(AtspiRequest &request);
    AXResult stringForTextMarkerRange(AtspiRequest &request, const AXValue &parameter);
    AXResult boundsForRange(AtspiRequest &request, const AXValue &parameter);

    std::optional<QList<AtspiText::Run>> runs(AtspiRequest &request, AtspiTextRange range);
    void remember(AtspiTextRange range, const QList<AtspiText::Run> &runs);

    const AtspiObject m_object;
    std::mutex m_mutex; ///< guards what follows: what a request for text found, for one about its bounds
    AtspiTextRange m_readRange;
    QList<AtspiText::Run> m_runs;
};

} // namespace tovi
