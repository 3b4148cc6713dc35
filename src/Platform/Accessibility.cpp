// SPDX-License-Identifier: MIT
#include "Platform/Accessibility.h"

namespace tovi {

AXResult AXElement::attribute(const QString &name) const
{
    return m_impl ? m_impl->attribute(name) : AXResult{AXError::CannotComplete, {}};
}

AXResult AXElement::parameterizedAttribute(const QString &name, const AXValue &parameter) const
{
    return m_impl ? m_impl->parameterizedAttribute(name, parameter) : AXResult{AXError::CannotComplete, {}};
}

AXError AXElement::performAction(const QString &name) const
{
    return m_impl ? m_impl->performAction(name) : AXError::CannotComplete;
}

AXResult AXElement::elementAtPosition(float x, float y) const
{
    return m_impl ? m_impl->elementAtPosition(x, y) : AXResult{AXError::CannotComplete, {}};
}

void AXElement::setMessagingTimeout(Clock::Duration timeout) const
{
    if (m_impl)
        m_impl->setMessagingTimeout(timeout);
}

bool AXElement::operator==(const AXElement &other) const
{
    if (!m_impl || !other.m_impl)
        return m_impl == other.m_impl;
    return m_impl->equals(*other.m_impl);
}

} // namespace tovi
