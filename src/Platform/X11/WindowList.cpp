// SPDX-License-Identifier: MIT
#include "Platform/X11/WindowList.h"

#include <map>
#include <vector>

namespace tovi {

namespace {

// Window managers put at most two windows of their own around a client's. A window whose parts are so many is
// no frame.
constexpr int deepestClient = 3;
constexpr size_t mostParts = 64;

/// A window of the display server itself: where a compositor draws what we compose ourselves.
bool isServers(const XcbSession &session, xcb_window_t window)
{
    return session.isSameClient(window, 0);
}

/// Some window managers keep hidden windows on the screen, below one of their own that nobody sees.
bool isCurtain(const XcbSession &session, xcb_window_t windowManager, const StackedWindow &window,
               QSize desktop)
{
    return windowManager && session.isSameClient(window.id, windowManager) &&
           window.outline.contains(QRect(QPoint(), desktop));
}

/// A window of the window manager's; 0 where none says so.
xcb_window_t windowManagerOf(XcbSession &session)
{
    const auto check = propertyItems(
        session.reply(session.requestProperty(session.root(), session.atom("_NET_SUPPORTING_WM_CHECK")))
            .get());
    return check.isEmpty() ? 0 : check.first();
}

QList<StackedWindow> visibleWindows(XcbSession &session, xcb_window_t windowManager)
{
    auto *connection = session.connection();
    const auto desktop =
        session.reply<xcb_get_geometry_reply_t>(xcb_get_geometry(connection, session.root()));
    const auto tree = session.reply<xcb_query_tree_reply_t>(xcb_query_tree(connection, session.root()));
    if (!tree || !desktop)
        return {};
    struct Question
    {
        xcb_window_t id;
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    std::vector<Question> questions;
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i)
        questions.push_back({children[i], xcb_get_window_attributes(connection, children[i]),
                             xcb_get_geometry(connection, children[i])});
    QList<StackedWindow> windows;
    for (const Question &question : questions) {
        const auto attributes = session.reply<xcb_get_window_attributes_reply_t>(question.attributes);
        const auto geometry = session.reply<xcb_get_geometry_reply_t>(question.geometry);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            isServers(session, question.id))
            continue;
        const int border = geometry->border_width;
        const StackedWindow window{.id = question.id,
                                   .client = question.id,
                                   .visual = attributes->visual,
                                   .outline = {geometry->x, geometry->y, geometry->width + 2 * border,
                                               geometry->height + 2 * border},
                                   .borderWidth = border};
        if (attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT)
            windows.append(window);
        else if (isCurtain(session, windowManager, window, {desktop->width, desktop->height}))
            windows.clear();
    }
    return windows;
}

/// Looks for the clients inside frames, level by level. A client carries the window manager's mark; a window
/// of ours may be on the screen a moment before it does, and is told from our icon in somebody's tray.
void findClients(XcbSession &session, QList<StackedWindow> &windows, quint32 own)
{
    struct Candidate
    {
        StackedWindow *top;
        xcb_window_t id;
    };
    auto *connection = session.connection();
    const xcb_atom_t mark = session.atom("WM_STATE");
    const xcb_atom_t embedding = session.atom("_XEMBED_INFO");
    const auto has = [&session](xcb_window_t window, xcb_atom_t property) {
        const auto reply = session.reply(session.requestProperty(window, property, 0));
        return reply && reply->type != XCB_ATOM_NONE;
    };
    const auto isOurs = [&](xcb_window_t window) {
        return session.isSameClient(window, own) && has(window, XCB_ATOM_WM_CLASS) && !has(window, embedding);
    };
    std::vector<Candidate> level;
    for (StackedWindow &window : windows)
        level.push_back({&window, window.id});
    std::map<const StackedWindow *, bool> found;
    for (int depth = 0; depth <= deepestClient && !level.empty(); ++depth) {
        std::vector<xcb_get_property_cookie_t> marks;
        std::vector<xcb_query_tree_cookie_t> trees;
        for (const Candidate &candidate : level) {
            marks.push_back(session.requestProperty(candidate.id, mark, 0));
            trees.push_back(xcb_query_tree(connection, candidate.id));
        }
        std::vector<Candidate> next;
        for (size_t i = 0; i < level.size(); ++i) {
            const auto [top, id] = level[i];
            const auto property = session.reply(marks[i]);
            const auto tree = session.reply<xcb_query_tree_reply_t>(trees[i]);
            if (found[top])
                continue;
            if ((property && property->type != XCB_ATOM_NONE) || isOurs(id)) {
                top->client = id;
                found[top] = true;
            } else if (tree) {
                const xcb_window_t *children = xcb_query_tree_children(tree.get());
                const auto count = std::min(size_t(xcb_query_tree_children_length(tree.get())), mostParts);
                for (size_t child = 0; child < count; ++child)
                    next.push_back({top, children[child]});
            }
        }
        std::erase_if(next, [&](const Candidate &candidate) { return found[candidate.top]; });
        level = std::move(next);
    }
}

void findProcesses(XcbSession &session, QList<StackedWindow> &windows)
{
    const auto *extension = xcb_get_extension_data(session.connection(), &xcb_res_id);
    if (!extension || !extension->present)
        return;
    std::map<xcb_window_t, xcb_res_query_client_ids_cookie_t> questions; // by client window
    for (const StackedWindow &window : windows) {
        const xcb_res_client_id_spec_t question{window.client, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        questions.try_emplace(window.client, xcb_res_query_client_ids(session.connection(), 1, &question));
    }
    std::map<xcb_window_t, qint64> processes;
    for (const auto &[client, cookie] : questions)
        processes[client] = localClientPid(session.reply<xcb_res_query_client_ids_reply_t>(cookie).get());
    for (StackedWindow &window : windows)
        window.processIdentifier = processes[window.client];
}

/// Window managers copy it from the client to the frame, but not all of them.
void findOpacities(XcbSession &session, QList<StackedWindow> &windows)
{
    const xcb_atom_t opacity = session.atom("_NET_WM_WINDOW_OPACITY");
    std::vector<xcb_get_property_cookie_t> questions;
    for (const StackedWindow &window : windows) {
        questions.push_back(session.requestProperty(window.id, opacity, 1));
        questions.push_back(session.requestProperty(window.client, opacity, 1));
    }
    for (size_t i = 0; i < questions.size(); ++i) {
        const auto items = propertyItems(session.reply(questions[i]).get());
        if (!items.isEmpty())
            windows[qsizetype(i / 2)].opacity = items.first();
    }
}

} // namespace

std::optional<QList<StackedWindow>> stackedWindows(XcbSession &session, quint32 own)
{
    const xcb_window_t windowManager = windowManagerOf(session);
    QList<StackedWindow> windows = visibleWindows(session, windowManager);
    findClients(session, windows, own);
    windows.removeIf([&](const StackedWindow &window) {
        return windowManager && session.isSameClient(window.client, windowManager);
    });
    findProcesses(session, windows);
    findOpacities(session, windows);
    // Half a list would leave out too few.
    if (session.isLate() || !session.isOpen())
        return std::nullopt;
    return windows;
}

} // namespace tovi
