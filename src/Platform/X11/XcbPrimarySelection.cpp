// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbPrimarySelection.h"

#include <cerrno>

#include <poll.h>

namespace tovi {

namespace {

constexpr int sizeLimit = 16 << 20;

} // namespace

PrimarySelection::Answer XcbPrimarySelection::read(const ActiveWindow &window, QDeadlineTimer deadline)
{
    const std::chrono::nanoseconds left(std::max<qint64>(deadline.remainingTimeNSecs(), 0));
    std::unique_lock lock(m_mutex, left);
    if (!lock)
        return {Status::TimedOut, {}};
    // The server may have gone and come back.
    if (!m_session || !m_session->isOpen())
        m_session.emplace();
    if (!m_session->isOpen())
        return {Status::Unavailable, {}};
    m_session->startDeadline(std::chrono::duration_cast<std::chrono::milliseconds>(left));
    m_server = m_session->connection();
    // A window for this read alone: answers that come too late find nobody.
    m_requestor = xcb_generate_id(m_server);
    const quint32 eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_server, 0, m_requestor, m_session->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    m_property = m_session->atom("TOVI_SELECTION");
    Answer answer = readLocked(window, deadline);
    xcb_destroy_window(m_server, m_requestor);
    xcb_flush(m_server);
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_server)})
        continue;
    return answer;
}

PrimarySelection::Answer XcbPrimarySelection::readLocked(const ActiveWindow &window,
                                                         const QDeadlineTimer &deadline)
{
    const auto owner = m_session->reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(m_server, XCB_ATOM_PRIMARY));
    if (!owner)
        return {Status::Unavailable, {}};
    if (owner->owner == XCB_WINDOW_NONE || !ownedBy(owner->owner, window))
        return {Status::NotOwner, {}};

    const Transfer targets = convert(m_session->atom("TARGETS"), deadline);
    if (targets.status != Status::Text)
        return {targets.status, {}};
    QList<xcb_atom_t> offered(targets.property.data.size() / qsizetype(sizeof(xcb_atom_t)));
    if (targets.property.format == 32)
        std::memcpy(offered.data(), targets.property.data.constData(), offered.size() * sizeof(xcb_atom_t));
    if (offered.contains(m_session->atom("x-kde-passwordManagerHint")))
        return {Status::NoText, {}};

    const xcb_atom_t utf8 = m_session->atom("UTF8_STRING");
    for (const xcb_atom_t target :
         {utf8, m_session->atom("text/plain;charset=utf-8"), xcb_atom_t(XCB_ATOM_STRING)}) {
        if (!offered.contains(target))
            continue;
        const Transfer transfer = convert(target, deadline);
        if (transfer.status != Status::Text)
            return {transfer.status, {}};
        if (transfer.property.format != 8 || transfer.property.data.isEmpty())
            return {Status::NoText, {}};
        const QByteArray &data = transfer.property.data;
        return {Status::Text, transfer.property.type == XCB_ATOM_STRING ? QString::fromLatin1(data)
                                                                        : QString::fromUtf8(data)};
    }
    return {Status::NoText, {}};
}

bool XcbPrimarySelection::ownedBy(xcb_window_t owner, const ActiveWindow &window)
{
    if (window.id == 0 || window.id > std::numeric_limits<xcb_window_t>::max())
        return false;
    const auto active = static_cast<xcb_window_t>(window.id);
    if (m_session->isSameClient(owner, active))
        return true;
    // An application may own selections through a second connection.
    const qint64 process = m_session->processOf(owner);
    return process != 0 && process == m_session->processOf(active);
}

XcbPrimarySelection::Transfer XcbPrimarySelection::convert(xcb_atom_t target, const QDeadlineTimer &deadline)
{
    xcb_delete_property(m_server, m_requestor, m_property);
    xcb_convert_selection(m_server, m_requestor, XCB_ATOM_PRIMARY, target, m_property, XCB_CURRENT_TIME);
    xcb_flush(m_server);
    const auto event = waitFor(
        [&](const xcb_generic_event_t *candidate) {
            if ((candidate->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
                return false;
            const auto *notify = reinterpret_cast<const xcb_selection_notify_event_t *>(candidate);
            return notify->requestor == m_requestor && notify->target == target;
        },
        deadline);
    if (!event)
        return {deadline.hasExpired() ? Status::TimedOut : Status::Unavailable, {}};
    if (reinterpret_cast<const xcb_selection_notify_event_t *>(event.get())->property == XCB_ATOM_NONE)
        return {Status::NoText, {}};
    auto property = takeProperty();
    if (!property)
        return {Status::NoText, {}};
    if (property->type == m_session->atom("INCR"))
        return receiveIncrements(deadline);
    return {Status::Text, std::move(*property)};
}

/// The owner sends large texts piece by piece: each removal of the property asks for the next, an empty piece
/// ends them.
XcbPrimarySelection::Transfer XcbPrimarySelection::receiveIncrements(const QDeadlineTimer &deadline)
{
    Property whole;
    for (;;) {
        const auto event = waitFor(
            [&](const xcb_generic_event_t *candidate) {
                if ((candidate->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
                    return false;
                const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(candidate);
                return notify->window == m_requestor && notify->atom == m_property &&
                       notify->state == XCB_PROPERTY_NEW_VALUE;
            },
            deadline);
        if (!event)
            return {deadline.hasExpired() ? Status::TimedOut : Status::Unavailable, {}};
        auto piece = takeProperty();
        if (!piece || whole.data.size() + piece->data.size() > sizeLimit)
            return {Status::NoText, {}};
        if (piece->data.isEmpty())
            return {Status::Text, std::move(whole)};
        whole.type = piece->type;
        whole.format = piece->format;
        whole.data += piece->data;
    }
}

std::optional<XcbPrimarySelection::Property> XcbPrimarySelection::takeProperty()
{
    const auto reply = m_session->reply(
        xcb_get_property(m_server, true, m_requestor, m_property, XCB_ATOM_ANY, 0, sizeLimit / 4));
    if (!reply || reply->bytes_after > 0)
        return std::nullopt;
    return Property{reply->type, reply->format,
                    QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                               xcb_get_property_value_length(reply.get()))};
}

template <class Wanted>
XcbOwned<xcb_generic_event_t> XcbPrimarySelection::waitFor(Wanted wanted, const QDeadlineTimer &deadline)
{
    for (;;) {
        while (XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_server)}) {
            if (wanted(event.get()))
                return event;
        }
        const qint64 left = deadline.remainingTimeNSecs();
        if (left <= 0 || xcb_connection_has_error(m_server))
            return nullptr;
        pollfd descriptor{xcb_get_file_descriptor(m_server), POLLIN, 0};
        const timespec wait{left / 1'000'000'000, left % 1'000'000'000};
        if (ppoll(&descriptor, 1, &wait, nullptr) < 0 && errno != EINTR)
            return nullptr;
    }
}

} // namespace tovi
