// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiMenu.h"

#include <algorithm>
#include <array>

#include <systemd/sd-bus.h>

#include "Platform/Linux/AtspiNames.h"

namespace tovi::AtspiMenu {

namespace {

constexpr int itemLimit = 200;
/// How far from the window a menu bar is looked for, and among how many objects.
constexpr int depthLimit = 5;
constexpr int searchLimit = 200;
constexpr int actionLimit = 4;

/// What a menu bar stands in. Anything else, above all a document, is not opened in the search.
bool holdsMenuBar(quint32 role)
{
    constexpr std::array roles{Atspi::RoleFiller, Atspi::RolePanel, Atspi::RoleRootPane,
                               Atspi::RoleLayeredPane, Atspi::RoleToolBar};
    return std::any_of(roles.begin(), roles.end(), [role](Atspi::Role each) { return each == role; });
}

DBusMessage childrenQuestion(AtspiRequest &request, const AtspiObject &object)
{
    return request.method(object, Atspi::accessible, "GetChildren");
}

} // namespace

bool isMenu(quint32 role)
{
    return role == Atspi::RoleMenu || role == Atspi::RolePopupMenu;
}

bool isItem(quint32 role)
{
    constexpr std::array roles{Atspi::RoleMenuItem, Atspi::RoleCheckBox, Atspi::RoleCheckMenuItem,
                               Atspi::RoleRadioButton, Atspi::RoleRadioMenuItem};
    return std::any_of(roles.begin(), roles.end(), [role](Atspi::Role each) { return each == role; });
}

std::optional<Node> menuBar(AtspiRequest &request, const AtspiObject &window)
{
    QList<AtspiObject> containers{window};
    int seen = 0;
    for (int depth = 0; depth < depthLimit && !containers.isEmpty() && seen < searchLimit; ++depth) {
        std::vector<DBusMessage> questions;
        for (const AtspiObject &container : containers)
            questions.push_back(childrenQuestion(request, container));
        QList<AtspiObject> level;
        for (const DBusReply &reply : request.callAll(questions))
            level << AtspiReply::objects(reply, searchLimit - seen - static_cast<int>(level.size()));
        seen += static_cast<int>(level.size());

        questions.clear();
        for (const AtspiObject &object : level)
            questions.push_back(request.method(object, Atspi::accessible, "GetRole"));
        const std::vector<DBusReply> replies = request.callAll(questions);
        containers.clear();
        for (qsizetype i = 0; i < level.size(); ++i) {
            const quint32 role = AtspiReply::number(replies[static_cast<std::size_t>(i)]).value_or(0);
            if (role == Atspi::RoleMenuBar) {
                Node bar;
                bar.object = level[i];
                bar.role = role;
                bar.children =
                    AtspiReply::objects(request.call(childrenQuestion(request, bar.object)), itemLimit);
                return request.error() == AXError::None ? std::optional(bar) : std::nullopt;
            }
            if (holdsMenuBar(role))
                containers << level[i];
        }
    }
    return std::nullopt;
}

QList<Node> children(AtspiRequest &request, const Node &parent)
{
    std::vector<DBusMessage> questions;
    for (const AtspiObject &object : parent.children)
        questions.push_back(request.method(object, Atspi::accessible, "GetRole"));
    QList<Node> nodes;
    for (const DBusReply &reply : request.callAll(questions)) {
        nodes << Node{};
        nodes.last().object = parent.children[nodes.size() - 1];
        nodes.last().role = AtspiReply::number(reply).value_or(0);
    }

    using Reader = void (*)(Node &, const DBusReply &);
    std::vector<std::pair<Node *, Reader>> readers;
    questions.clear();
    const auto ask = [&](Node &node, DBusMessage question, Reader reader) {
        questions.push_back(std::move(question));
        readers.emplace_back(&node, reader);
    };
    // Who gives identifiers gives them to the menus, too: else no item has to be asked.
    const bool asksIdentifiers = parent.hasIdentifiers || parent.role == Atspi::RoleMenuBar;
    for (Node &node : nodes) {
        if (isItem(node.role)) {
            ask(node, request.method(node.object, Atspi::action, "GetKeyBinding", "i", 0),
                [](Node &item, const DBusReply &reply) {
                    item.keyBinding = AtspiReply::text(reply).value_or(QString());
                });
        }
        if (asksIdentifiers) {
            ask(node, request.property(node.object, Atspi::accessible, "AccessibleId"),
                [](Node &item, const DBusReply &reply) {
                    item.identifier = AtspiReply::textProperty(reply).value_or(QString());
                });
        }
        // Where submenus are menus, an item is none.
        if (isMenu(node.role) || (isItem(node.role) && parent.role != Atspi::RoleMenu)) {
            ask(node, childrenQuestion(request, node.object), [](Node &item, const DBusReply &reply) {
                item.children = AtspiReply::objects(reply, itemLimit);
            });
        }
    }
    const std::vector<DBusReply> replies = request.callAll(questions);
    for (std::size_t i = 0; i < replies.size(); ++i)
        readers[i].second(*readers[i].first, replies[i]);

    const bool named = std::any_of(nodes.cbegin(), nodes.cend(),
                                   [](const Node &node) { return !node.identifier.isEmpty(); });
    for (Node &node : nodes)
        node.hasIdentifiers = named || parent.hasIdentifiers;
    return request.error() == AXError::None ? nodes : QList<Node>();
}

std::optional<QString> name(AtspiRequest &request, const AtspiObject &object)
{
    return AtspiReply::textProperty(request.call(request.property(object, Atspi::accessible, "Name")));
}

std::optional<bool> isEnabled(AtspiRequest &request, const AtspiObject &object)
{
    const DBusReply reply = request.call(request.method(object, Atspi::accessible, "GetState"));
    if (reply.status != DBusStatus::Ok || sd_bus_message_has_signature(reply.message.get(), "au") <= 0)
        return std::nullopt;
    const quint64 states = AtspiReply::states(reply);
    return Atspi::has(states, Atspi::StateEnabled) || Atspi::has(states, Atspi::StateSensitive);
}

bool press(AtspiRequest &request, const AtspiObject &object)
{
    std::vector<DBusMessage> questions;
    for (int i = 0; i < actionLimit; ++i)
        questions.push_back(request.method(object, Atspi::action, "GetName", "i", i));
    const std::vector<DBusReply> names = request.callAll(questions);
    for (int i = 0; i < actionLimit && request.error() == AXError::None; ++i) {
        const QString name =
            AtspiReply::text(names[static_cast<std::size_t>(i)]).value_or(QString()).toLower();
        if (name != QLatin1String("click") && name != QLatin1String("press"))
            continue;
        const DBusReply reply = request.call(request.method(object, Atspi::action, "DoAction", "i", i));
        int done = 0;
        return reply.status == DBusStatus::Ok && sd_bus_message_read(reply.message.get(), "b", &done) > 0 &&
               done;
    }
    return false;
}

} // namespace tovi::AtspiMenu
