// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiMenuElement.h"

#include "Platform/Linux/AtspiNames.h"
#include "Platform/Linux/AtspiTree.h"
#include "Platform/Linux/MenuItemText.h"

namespace tovi {

namespace {

QString roleName(quint32 role)
{
    if (AtspiMenu::isItem(role))
        return QStringLiteral("AXMenuItem");
    if (AtspiMenu::isMenu(role))
        return QStringLiteral("AXMenu");
    return role == Atspi::RoleMenuBar ? QStringLiteral("AXMenuBar") : QStringLiteral("AXUnknown");
}

} // namespace

AXResult AtspiApplicationElement::attribute(const QString &name)
{
    if (name != QLatin1String("AXMenuBar"))
        return {AXError::AttributeUnsupported, {}};
    AtspiRequest request(*m_context->client, m_timeout);
    if (request.error() != AXError::None)
        return request.failure(AXError::NotTrusted);
    ActiveWindow window = m_context->activeWindow->activeWindow().value_or(ActiveWindow{});
    if (window.processIdentifier != m_processIdentifier)
        window = ActiveWindow{.processIdentifier = m_processIdentifier, .title = {}};
    const auto frame = AtspiTree::windowObject(request, window);
    const auto bar = frame ? AtspiMenu::menuBar(request, *frame) : std::nullopt;
    if (!bar)
        return request.failure(AXError::NoValue);
    return {AXError::None, AXElement(std::make_shared<AtspiMenuElement>(m_context, *bar))};
}

bool AtspiApplicationElement::equals(const AXElementImpl &other) const
{
    const auto *application = dynamic_cast<const AtspiApplicationElement *>(&other);
    return application && application->m_processIdentifier == m_processIdentifier;
}

AXResult AtspiMenuElement::attribute(const QString &name)
{
    using Reader = AXResult (AtspiMenuElement::*)();
    static const QHash<QString, Reader> readers{
        {QStringLiteral("AXRole"), &AtspiMenuElement::role},
        {QStringLiteral("AXIdentifier"), &AtspiMenuElement::identifier},
        {QStringLiteral("AXMenuItemCmdChar"), &AtspiMenuElement::commandCharacter},
        {QStringLiteral("AXTitle"), &AtspiMenuElement::title},
        {QStringLiteral("AXEnabled"), &AtspiMenuElement::enabled},
        {QStringLiteral("AXChildren"), &AtspiMenuElement::children},
    };
    const Reader reader = readers.value(name);
    return reader ? (this->*reader)() : AXResult{AXError::AttributeUnsupported, {}};
}

AXError AtspiMenuElement::performAction(const QString &name)
{
    if (name != QLatin1String("AXPress"))
        return AXError::AttributeUnsupported;
    AtspiRequest request(*m_context->client, m_timeout);
    if (request.error() != AXError::None)
        return request.error();
    return AtspiMenu::press(request, m_node.object) ? AXError::None
                                                    : request.failure(AXError::CannotComplete).error;
}

bool AtspiMenuElement::equals(const AXElementImpl &other) const
{
    const auto *element = dynamic_cast<const AtspiMenuElement *>(&other);
    return element && element->m_node.object == m_node.object;
}

AXResult AtspiMenuElement::role()
{
    return {AXError::None, roleName(m_node.role)};
}

AXResult AtspiMenuElement::identifier()
{
    return m_node.identifier.isEmpty() ? AXResult{AXError::NoValue, {}}
                                       : AXResult{AXError::None, m_node.identifier};
}

AXResult AtspiMenuElement::commandCharacter()
{
    const auto character = MenuItemText::commandCharacter(m_node.keyBinding);
    return character ? AXResult{AXError::None, *character} : AXResult{AXError::NoValue, {}};
}

AXResult AtspiMenuElement::title()
{
    AtspiRequest request(*m_context->client, m_timeout);
    const auto name = AtspiMenu::name(request, m_node.object);
    return name ? AXResult{AXError::None, MenuItemText::title(*name)} : request.failure(AXError::NoValue);
}

AXResult AtspiMenuElement::enabled()
{
    AtspiRequest request(*m_context->client, m_timeout);
    const auto enabled = AtspiMenu::isEnabled(request, m_node.object);
    return enabled ? AXResult{AXError::None, *enabled} : request.failure(AXError::NoValue);
}

AXResult AtspiMenuElement::children()
{
    QList<AXElement> children;
    if (!m_node.children.isEmpty()) {
        AtspiRequest request(*m_context->client, m_timeout);
        for (const AtspiMenu::Node &node : AtspiMenu::children(request, m_node))
            children << AXElement(std::make_shared<AtspiMenuElement>(m_context, node));
        if (request.error() != AXError::None)
            return request.failure(AXError::CannotComplete);
    }
    return {AXError::None, children};
}

} // namespace tovi
