// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbSelectionTransfer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <poll.h>

namespace tovi {

namespace {

constexpr int sizeLimit = 64 << 20;

} // namespace

XcbSelectionTransfer::XcbSelectionTransfer(XcbSession &session, xcb_atom_t selection, QDeadlineTimer deadline,
                                           std::chrono::nanoseconds silence)
    : m_session(session)
    , m_server(session.connection())
    , m_selection(selection)
    , m_deadline(deadline)
    , m_silence(silence)
    , m_requestor(xcb_generate_id(m_server))
{
    using std::chrono::nanoseconds;
    const nanoseconds left(std::max<qint64>(deadline.remainingTimeNSecs(), 0));
    m_session.startDeadline(std::chrono::duration_cast<std::chrono::milliseconds>(left));
    const quint32 eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_server, 0, m_requestor, m_session.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    m_property = m_session.atom("TOVI_SELECTION");
}

XcbSelectionTransfer::~XcbSelectionTransfer()
{
    if (m_isAnswerDue)
        m_session.abandon(m_requestor);
    else
        xcb_destroy_window(m_server, m_requestor);
    xcb_flush(m_server);
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_server)})
        continue;
}

XcbSelectionTransfer::Targets XcbSelectionTransfer::targets()
{
    const Result result = convert(m_session.atom("TARGETS"));
    if (result.status != Status::Done || result.value.format != 32)
        return {result.status, {}};
    QList<xcb_atom_t> atoms(result.value.data.size() / qsizetype(sizeof(xcb_atom_t)));
    std::memcpy(atoms.data(), result.value.data.constData(), atoms.size() * sizeof(xcb_atom_t));
    return {Status::Done, atoms};
}

XcbSelectionTransfer::Text XcbSelectionTransfer::text(const QList<xcb_atom_t> &offered)
{
    for (const xcb_atom_t target : {m_session.atom("UTF8_STRING"), m_session.atom("text/plain;charset=utf-8"),
                                    m_session.atom("text/plain"), xcb_atom_t(XCB_ATOM_STRING)}) {
        if (!offered.contains(target))
            continue;
        const Result result = convert(target);
        if (result.status != Status::Done)
            return {result.status, {}};
        if (result.value.format != 8)
            return {Status::Refused, {}};
        return {Status::Done, decoded(result.value.data, result.value.type == XCB_ATOM_STRING)};
    }
    return {Status::Refused, {}};
}

QString XcbSelectionTransfer::decoded(const QByteArray &data, bool isLatin1)
{
    // Some owners send the byte that ends their strings, too.
    qsizetype size = data.size();
    while (size > 0 && data[size - 1] == '\0')
        --size;
    return isLatin1 ? QString::fromLatin1(data.constData(), size) : QString::fromUtf8(data.constData(), size);
}

XcbSelectionTransfer::Result XcbSelectionTransfer::convert(xcb_atom_t target)
{
    xcb_delete_property(m_server, m_requestor, m_property);
    xcb_convert_selection(m_server, m_requestor, m_selection, target, m_property, XCB_CURRENT_TIME);
    xcb_flush(m_server);
    const auto event = waitFor([&](const xcb_generic_event_t *candidate) {
        if ((candidate->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
            return false;
        const auto *notify = reinterpret_cast<const xcb_selection_notify_event_t *>(candidate);
        return notify->requestor == m_requestor && notify->target == target;
    });
    if (!event)
        return {silenceStatus()};
    if (reinterpret_cast<const xcb_selection_notify_event_t *>(event.get())->property == XCB_ATOM_NONE)
        return {Status::Refused};
    auto value = takeProperty();
    if (!value)
        return {Status::Refused};
    if (value->type == m_session.atom("INCR"))
        return receiveIncrements();
    return {Status::Done, std::move(*value)};
}

/// The owner sends large contents piece by piece: each removal of the property asks for the next, an empty
/// piece ends them.
XcbSelectionTransfer::Result XcbSelectionTransfer::receiveIncrements()
{
    Value whole;
    for (;;) {
        const auto event = waitFor([&](const xcb_generic_event_t *candidate) {
            if ((candidate->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
                return false;
            const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(candidate);
            return notify->window == m_requestor && notify->atom == m_property &&
                   notify->state == XCB_PROPERTY_NEW_VALUE;
        });
        if (!event)
            return {silenceStatus()};
        auto piece = takeProperty();
        if (!piece || whole.data.size() + piece->data.size() > sizeLimit) {
            m_isAnswerDue = true;
            return {Status::Refused};
        }
        if (piece->data.isEmpty())
            return {Status::Done, std::move(whole)};
        whole.type = piece->type;
        whole.format = piece->format;
        whole.data += piece->data;
    }
}

std::optional<XcbSelectionTransfer::Value> XcbSelectionTransfer::takeProperty()
{
    const auto reply = m_session.reply(
        xcb_get_property(m_server, true, m_requestor, m_property, XCB_ATOM_ANY, 0, sizeLimit / 4));
    if (!reply || reply->bytes_after > 0)
        return std::nullopt;
    return Value{reply->type, reply->format,
                 QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                            qsizetype(reply->value_len) * (reply->format / 8))};
}

XcbSelectionTransfer::Status XcbSelectionTransfer::silenceStatus()
{
    m_isAnswerDue = true;
    return xcb_connection_has_error(m_server) ? Status::Broken : Status::TimedOut;
}

template <class Wanted>
XcbOwned<xcb_generic_event_t> XcbSelectionTransfer::waitFor(Wanted wanted)
{
    const QDeadlineTimer end = std::min(m_deadline, QDeadlineTimer(m_silence, Qt::PreciseTimer));
    for (;;) {
        while (XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(m_server)}) {
            if (wanted(event.get()))
                return event;
        }
        const qint64 left = end.remainingTimeNSecs();
        if (left <= 0 || xcb_connection_has_error(m_server))
            return nullptr;
        pollfd descriptor{xcb_get_file_descriptor(m_server), POLLIN, 0};
        const timespec wait{left / 1'000'000'000, left % 1'000'000'000};
        if (ppoll(&descriptor, 1, &wait, nullptr) < 0 && errno != EINTR)
            return nullptr;
    }
}

} // namespace tovi
