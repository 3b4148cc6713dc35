// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Linux/AtspiElement.h"
#include "Platform/Linux/AtspiMenu.h"

namespace tovi {

/// A running application.
class AtspiApplicationElement final : public AtspiElementBase
{
public:
    AtspiApplicationElement(std::shared_ptr<const AtspiContext> context, qint64 processIdentifier)
        : AtspiElementBase(std::move(context))
        , m_processIdentifier(processIdentifier)
    {}
    AXResult attribute(const QString &name) override;
    bool equals(const AXElementImpl &other) const override;

private:
    const qint64 m_processIdentifier;
};

/// A menu bar, menu or menu item. Most of what it answers was asked together with its siblings, when their
/// parent's children were; only the title and whether it is enabled are asked anew each time.
class AtspiMenuElement final : public AtspiElementBase
{
public:
    AtspiMenuElement(std::shared_ptr<const AtspiContext> context, AtspiMenu::Node node)
        : AtspiElementBase(std::move(context))
        , m_node(std::move(node))
    {}
    AXResult attribute(const QString &name) override;
    AXError performAction(const QString &name) override;
    bool equals(const AXElementImpl &other) const override;

private:
    AXResult role();
    AXResult identifier();
    AXResult commandCharacter();
    AXResult title();
    AXResult enabled();
    AXResult children();

    const AtspiMenu::Node m_node;
};

} // namespace tovi
