// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiAccessibility.h"

#include "Platform/Linux/AccessibilityBus.h"
#include "Platform/Linux/AtspiClient.h"
#include "Platform/Linux/AtspiElement.h"
#include "Platform/Linux/AtspiMenuElement.h"

namespace tovi {

AtspiAccessibility::AtspiAccessibility(std::shared_ptr<ActiveWindowSource> activeWindow,
                                       std::shared_ptr<PrimarySelection> primarySelection,
                                       AccessibilityScale scale)
    : m_bus(std::make_unique<AccessibilityBus>())
    , m_context(std::make_shared<AtspiContext>(
          AtspiContext{std::make_shared<AtspiClient>(m_bus->addressReader()), std::move(activeWindow),
                       std::move(primarySelection), std::move(scale)}))
{}

AtspiAccessibility::~AtspiAccessibility() = default;

bool AtspiAccessibility::isProcessTrusted()
{
    return m_bus->isEnabled();
}

void AtspiAccessibility::requestTrust()
{
    m_bus->enable();
}

AXElement AtspiAccessibility::systemWideElement()
{
    return AXElement(std::make_shared<AtspiSystemWideElement>(m_context));
}

AXElement AtspiAccessibility::applicationElement(qint64 processIdentifier)
{
    return AXElement(std::make_shared<AtspiApplicationElement>(m_context, processIdentifier));
}

} // namespace tovi
