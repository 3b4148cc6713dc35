// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiTree.h"

#include <QSet>

#include <systemd/sd-bus.h>

#include "Platform/Linux/AtspiNames.h"

namespace tovi::AtspiTree {

namespace {

constexpr int applicationLimit = 1000;
constexpr int windowLimit = 200;
/// Objects with more children than this (long lists and tables) are not searched.
constexpr int childLimit = 256;
constexpr int walkLimit = 4000;
constexpr int depthLimit = 64;

QList<AtspiObject> children(AtspiRequest &request, const AtspiObject &object, int limit)
{
    return AtspiReply::objects(request.call(request.method(object, Atspi::accessible, "GetChildren")), limit);
}

std::vector<quint64> statesOf(AtspiRequest &request, const QList<AtspiObject> &objects)
{
    std::vector<DBusMessage> questions;
    for (const AtspiObject &object : objects)
        questions.push_back(request.method(object, Atspi::accessible, "GetState"));
    std::vector<quint64> states;
    for (const DBusReply &reply : request.callAll(questions))
        states.push_back(AtspiReply::states(reply));
    return states;
}

std::optional<AtspiObject> askCollection(AtspiRequest &request, const AtspiObject &window)
{
    constexpr int matchAll = 1;
    constexpr quint32 canonicalOrder = 1;
    DBusMessage question = request.method(window, Atspi::collection, "GetMatches");
    if (!question ||
        sd_bus_message_append(question.get(), "(aiia{ss}iaiiasib)uib", 2, 1 << Atspi::StateFocused, 0,
                              matchAll, 0, matchAll, 0, matchAll, 0, matchAll, 0, canonicalOrder, 1, 1) < 0)
        return std::nullopt;
    const QList<AtspiObject> found = AtspiReply::objects(request.call(question), 1);
    return found.isEmpty() ? std::nullopt : std::optional(found.first());
}

/// Several objects may claim the focus: containers for what they contain, the tab of the page that has it.
std::optional<AtspiObject> bestFocus(AtspiRequest &request, const QList<AtspiObject> &focused)
{
    std::vector<DBusMessage> questions;
    for (const AtspiObject &object : focused)
        questions.push_back(request.method(object, Atspi::text, "GetNSelections"));
    const std::vector<DBusReply> replies = request.callAll(questions);
    for (std::size_t i = 0; i < replies.size(); ++i) {
        if (AtspiReply::integer(replies[i]))
            return focused[static_cast<qsizetype>(i)];
    }
    return focused.isEmpty() ? std::nullopt : std::optional(focused.first());
}

/// Level by level, each level in two rounds of questions.
std::optional<AtspiObject> searchFocus(AtspiRequest &request, const AtspiObject &window)
{
    QList<AtspiObject> focused;
    QSet<AtspiObject> seen{window};
    QList<AtspiObject> level{window};
    for (int depth = 0; depth < depthLimit && !level.isEmpty() && request.error() == AXError::None; ++depth) {
        std::vector<DBusMessage> questions;
        for (const AtspiObject &object : level) {
            questions.push_back(request.method(object, Atspi::accessible, "GetState"));
            questions.push_back(request.property(object, Atspi::accessible, "ChildCount"));
        }
        const std::vector<DBusReply> replies = request.callAll(questions);
        questions.clear();
        for (qsizetype i = 0; i < level.size(); ++i) {
            const auto at = static_cast<std::size_t>(2 * i);
            const quint64 states = AtspiReply::states(replies[at]);
            const int count = AtspiReply::integerProperty(replies[at + 1]).value_or(0);
            if (!Atspi::has(states, Atspi::StateShowing) && level[i] != window)
                continue;
            if (Atspi::has(states, Atspi::StateFocused)) {
                if (Atspi::has(states, Atspi::StateEditable))
                    return level[i];
                focused << level[i];
            }
            if (count > 0 && count <= childLimit)
                questions.push_back(request.method(level[i], Atspi::accessible, "GetChildren"));
        }
        level.clear();
        for (const DBusReply &reply : request.callAll(questions)) {
            for (const AtspiObject &child : AtspiReply::objects(reply, childLimit)) {
                if (seen.size() >= walkLimit)
                    break;
                if (!seen.contains(child)) {
                    seen.insert(child);
                    level << child;
                }
            }
        }
    }
    return bestFocus(request, focused);
}

bool contains(const std::optional<QRect> &extents, QPoint point)
{
    return extents && extents->contains(point);
}

DBusMessage extentsQuestion(AtspiRequest &request, const AtspiObject &object)
{
    return request.method(object, Atspi::component, "GetExtents", "u", Atspi::screenCoordinates);
}

/// For containers that do not find their own children by position. Some have children without a place of
/// their own whose children are the ones on the screen.
std::optional<AtspiObject> childAt(AtspiRequest &request, const AtspiObject &object, QPoint point,
                                   int levels = 2)
{
    const auto count =
        AtspiReply::integerProperty(request.call(request.property(object, Atspi::accessible, "ChildCount")));
    if (count.value_or(0) <= 0 || *count > childLimit)
        return std::nullopt;
    const QList<AtspiObject> candidates = children(request, object, childLimit);
    const std::vector<quint64> states = statesOf(request, candidates);
    std::vector<DBusMessage> questions;
    for (const AtspiObject &candidate : candidates)
        questions.push_back(extentsQuestion(request, candidate));
    const std::vector<DBusReply> replies = request.callAll(questions);
    QList<AtspiObject> placeless;
    for (std::size_t i = replies.size(); i-- > 0;) {
        if (!Atspi::has(states[i], Atspi::StateShowing))
            continue;
        const AtspiObject &candidate = candidates[static_cast<qsizetype>(i)];
        const QRect extents = AtspiReply::rectangle(replies[i]).value_or(QRect());
        if (extents.contains(point))
            return candidate;
        if (extents.isEmpty())
            placeless << candidate;
    }
    for (const AtspiObject &candidate : placeless) {
        if (levels <= 1 || request.error() != AXError::None)
            break;
        if (const auto found = childAt(request, candidate, point, levels - 1))
            return found;
    }
    return std::nullopt;
}

} // namespace

std::optional<AtspiObject> windowObject(AtspiRequest &request, const ActiveWindow &window)
{
    if (window.processIdentifier <= 0)
        return std::nullopt;
    const QList<AtspiObject> applications =
        children(request, {Atspi::registryName, Atspi::rootPath}, applicationLimit);
    QList<QByteArray> names;
    for (const AtspiObject &application : applications)
        names << application.bus;
    const std::vector<qint64> processes = request.processes(names);
    QList<AtspiObject> showing;
    for (qsizetype i = 0; i < applications.size(); ++i) {
        if (processes[static_cast<std::size_t>(i)] != window.processIdentifier)
            continue;
        const QList<AtspiObject> windows = children(request, applications[i], windowLimit);
        const std::vector<quint64> states = statesOf(request, windows);
        for (qsizetype w = 0; w < windows.size(); ++w) {
            const quint64 state = states[static_cast<std::size_t>(w)];
            if (Atspi::has(state, Atspi::StateActive))
                return windows[w];
            if (Atspi::has(state, Atspi::StateShowing))
                showing << windows[w];
        }
    }
    if (showing.size() == 1)
        return showing.first();
    // Not every application tells which of its windows is active.
    std::vector<DBusMessage> questions;
    for (const AtspiObject &object : showing)
        questions.push_back(request.property(object, Atspi::accessible, "Name"));
    const std::vector<DBusReply> titles = request.callAll(questions);
    for (qsizetype i = 0; i < showing.size(); ++i) {
        const auto name = AtspiReply::textProperty(titles[static_cast<std::size_t>(i)]);
        if (name && !name->isEmpty() && *name == window.title)
            return showing[i];
    }
    return std::nullopt;
}

std::optional<AtspiObject> focusedObject(AtspiRequest &request, const AtspiObject &window, bool hasKeyboard)
{
    const AtspiObject last = request.lastFocus(window);
    if (!last.isNull()) {
        const quint64 states =
            AtspiReply::states(request.call(request.method(last, Atspi::accessible, "GetState")));
        // A window that has lost the keyboard to us will have its focus where it was.
        if (Atspi::has(states, Atspi::StateShowing) &&
            (!hasKeyboard || Atspi::has(states, Atspi::StateFocused)))
            return last;
    }
    std::optional<AtspiObject> focused = askCollection(request, window);
    if (!focused && request.error() == AXError::None)
        focused = searchFocus(request, window);
    if (focused && request.error() == AXError::None)
        request.setLastFocus(window, *focused);
    return focused;
}

std::optional<AtspiObject> objectAt(AtspiRequest &request, const AtspiObject &window, QPoint point)
{
    if (!contains(AtspiReply::rectangle(request.call(extentsQuestion(request, window))), point))
        return std::nullopt;
    QSet<AtspiObject> seen;
    AtspiObject current = window;
    for (int depth = 0; depth < depthLimit && !seen.contains(current); ++depth) {
        seen.insert(current);
        auto inner = AtspiReply::object(
            request.call(request.method(current, Atspi::component, "GetAccessibleAtPoint", "iiu", point.x(),
                                        point.y(), Atspi::screenCoordinates)));
        if (!inner || seen.contains(*inner))
            inner = childAt(request, current, point);
        if (!inner)
            break;
        current = *inner;
    }
    return request.error() == AXError::None ? std::optional(current) : std::nullopt;
}

std::optional<AtspiObject> parent(AtspiRequest &request, const AtspiObject &object)
{
    return AtspiReply::objectProperty(request.call(request.property(object, Atspi::accessible, "Parent")));
}

std::optional<AtspiObject> enclosingDocument(AtspiRequest &request, const AtspiObject &object)
{
    AtspiObject current = object;
    for (int depth = 0; depth < depthLimit; ++depth) {
        std::vector<DBusMessage> questions;
        questions.push_back(request.method(current, Atspi::accessible, "GetRole"));
        questions.push_back(request.property(current, Atspi::accessible, "Parent"));
        const std::vector<DBusReply> replies = request.callAll(questions);
        if (Atspi::isDocument(AtspiReply::number(replies[0]).value_or(0)))
            return current;
        const auto next = AtspiReply::objectProperty(replies[1]);
        if (!next || *next == current)
            break;
        current = *next;
    }
    return std::nullopt;
}

} // namespace tovi::AtspiTree
