// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>

#include "Platform/Accessibility.h"

namespace tovi {

/// A scripted accessibility object: attributes by name; a missing one answers AttributeUnsupported.
struct TestElement : AXElementImpl
{
    AXResult attribute(const QString &name) override
    {
        const std::scoped_lock lock(mutex);
        requests << name;
        if (onRequest)
            onRequest(name);
        const auto it = attributes.find(name);
        return it == attributes.end() ? AXResult{AXError::AttributeUnsupported, {}} : it->second;
    }
    AXResult parameterizedAttribute(const QString &name, const AXValue &parameter) override
    {
        const std::scoped_lock lock(mutex);
        requests << name;
        const auto it = parameterized.find(name);
        return it == parameterized.end() ? AXResult{AXError::AttributeUnsupported, {}}
                                         : it->second(parameter);
    }
    AXError performAction(const QString &name) override
    {
        const std::scoped_lock lock(mutex);
        actions << name;
        return onAction ? onAction(name) : AXError::None;
    }
    AXResult elementAtPosition(float x, float y) override
    {
        const std::scoped_lock lock(mutex);
        positions << QPointF(x, y);
        return atPosition;
    }
    void setMessagingTimeout(Clock::Duration value) override { timeout = value; }
    bool equals(const AXElementImpl &other) const override { return this == &other; }

    std::recursive_mutex mutex;
    std::map<QString, AXResult> attributes;
    std::map<QString, std::function<AXResult(const AXValue &)>> parameterized;
    std::function<void(const QString &)> onRequest;
    std::function<AXError(const QString &)> onAction;
    AXResult atPosition{AXError::NoValue, {}};
    QList<QPointF> positions;
    QStringList requests;
    QStringList actions;
    Clock::Duration timeout{};
};

class TestAccessibility final : public Accessibility
{
public:
    bool isProcessTrusted() override { return trusted; }
    void requestTrust() override { ++trustRequests; }
    AXElement systemWideElement() override { return AXElement(systemWide); }
    AXElement applicationElement(qint64 processIdentifier) override
    {
        const auto it = applications.find(processIdentifier);
        return it == applications.end() ? AXElement(std::make_shared<TestElement>()) : it->second;
    }

    std::map<qint64, AXElement> applications; ///< by process identifier
    std::shared_ptr<TestElement> systemWide = std::make_shared<TestElement>();
    bool trusted = true;
    int trustRequests = 0;
};

} // namespace tovi
