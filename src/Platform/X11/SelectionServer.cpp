// SPDX-License-Identifier: MIT
#include "Platform/X11/SelectionServer.h"

#include <algorithm>
#include <vector>

namespace tovi {

namespace {

/// What every server takes in one request.
constexpr qsizetype pieceSize = 240 << 10; // bytes
constexpr std::chrono::seconds stallLimit{20};
constexpr std::chrono::milliseconds requestLimit{250};
constexpr std::chrono::seconds namesLimit{5};
/// Of a request for several forms at once; in four-byte units.
constexpr quint32 multipleLimit = 4096;

struct Label
{
    QByteArray type;
    quint8 format;
};

/// What XcbClipboard::labelOf() wrote; the form's own name where there is none.
Label parsed(const PasteboardItem &item)
{
    const qsizetype slash = item.label.lastIndexOf(QLatin1Char('/'));
    const int format = slash > 0 ? QStringView(item.label).mid(slash + 1).toInt() : 0;
    if (format != 8 && format != 16 && format != 32)
        return {item.type.toLatin1(), 8};
    return {item.label.left(slash).toLatin1(), static_cast<quint8>(format)};
}

} // namespace

SelectionServer::SelectionServer(XcbSession &session, xcb_window_t window)
    : m_session(session)
    , m_window(window)
{}

void SelectionServer::setContents(const QList<PasteboardItem> &contents)
{
    QList<Label> labels;
    QByteArrayList names;
    for (const PasteboardItem &item : contents) {
        labels << parsed(item);
        names << item.type.toLatin1() << labels.last().type;
    }
    m_session.startDeadline(namesLimit);
    m_session.prefetchAtoms(names);
    m_forms.clear();
    for (qsizetype i = 0; i < contents.size(); ++i) {
        const Form form{m_session.atom(names[2 * i]), m_session.atom(names[2 * i + 1]), labels[i].format,
                        contents.at(i).data};
        if (form.target != XCB_ATOM_NONE && form.type != XCB_ATOM_NONE)
            m_forms << form;
    }
}

QList<xcb_atom_t> SelectionServer::targets()
{
    QList<xcb_atom_t> result{m_session.atom("TARGETS"), m_session.atom("MULTIPLE"),
                             m_session.atom("TIMESTAMP")};
    for (const Form &form : m_forms)
        result << form.target;
    return result;
}

void SelectionServer::handle(const xcb_selection_request_event_t &request)
{
    m_session.startDeadline(requestLimit);
    // Obsolete clients leave the choice of the property to the owner.
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const Place place{request.requestor, property};
    const bool isOurs = request.owner == m_window;
    const bool isMultiple = request.target == m_session.atom("MULTIPLE");
    const bool done = isOurs && (isMultiple ? request.property != XCB_ATOM_NONE && convertMultiple(place)
                                            : convert(place, request.target));

    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = done ? property : xcb_atom_t(XCB_ATOM_NONE);
    // The server sends 32 bytes whatever the event's size.
    char event[32] = {};
    std::copy_n(reinterpret_cast<const char *>(&notify), sizeof notify, event);
    xcb_send_event(m_session.connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, event);
    xcb_flush(m_session.connection());
}

bool SelectionServer::convert(Place place, xcb_atom_t target)
{
    forget(place);
    if (target == m_session.atom("TARGETS")) {
        const QList<xcb_atom_t> atoms = targets();
        put(place, XCB_ATOM_ATOM, 32, atoms.constData(), atoms.size());
        return true;
    }
    if (target == m_session.atom("TIMESTAMP")) {
        put(place, XCB_ATOM_INTEGER, 32, &m_timestamp, 1);
        return true;
    }
    const auto form = std::ranges::find(m_forms, target, &Form::target);
    if (form == m_forms.end())
        return false;
    if (form->data.size() <= pieceSize) {
        put(place, form->type, form->format, form->data.constData(), form->data.size() / (form->format / 8));
        return true;
    }
    const quint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_session.connection(), place.requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<quint32>(form->data.size());
    put(place, m_session.atom("INCR"), 32, &size, 1);
    m_transfers.insert_or_assign(place,
                                 Transfer{.form = *form, .lastProgress = std::chrono::steady_clock::now()});
    return true;
}

/// Pairs of form and property; those that fail lose their property.
bool SelectionServer::convertMultiple(Place place)
{
    const auto reply =
        m_session.reply(m_session.requestProperty(place.requestor, place.property, multipleLimit));
    QList<quint32> pairs = propertyItems(reply.get());
    if (pairs.isEmpty() || pairs.size() % 2 != 0 || reply->bytes_after > 0)
        return false;
    for (qsizetype i = 0; i < pairs.size(); i += 2) {
        const bool isNested = pairs[i] == m_session.atom("MULTIPLE");
        if (isNested || pairs[i + 1] == XCB_ATOM_NONE || !convert({place.requestor, pairs[i + 1]}, pairs[i]))
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    put(place, reply->type, 32, pairs.constData(), pairs.size());
    return true;
}

void SelectionServer::put(Place place, xcb_atom_t type, quint8 format, const void *data, qsizetype items)
{
    xcb_change_property(m_session.connection(), XCB_PROP_MODE_REPLACE, place.requestor, place.property, type,
                        format, static_cast<quint32>(items), data);
}

void SelectionServer::handle(const xcb_property_notify_event_t &notify)
{
    const Place place{notify.window, notify.atom};
    const auto transfer = m_transfers.find(place);
    if (notify.state != XCB_PROPERTY_DELETE || transfer == m_transfers.end())
        return;
    const bool isEnd = transfer->second.sent == transfer->second.form.data.size();
    sendPiece(place, transfer->second);
    if (isEnd)
        forget(place);
    xcb_flush(m_session.connection());
}

/// An empty piece ends a transfer.
void SelectionServer::sendPiece(Place place, Transfer &transfer)
{
    const Form &form = transfer.form;
    const qsizetype size = std::min(pieceSize, form.data.size() - transfer.sent);
    put(place, form.type, form.format, form.data.constData() + transfer.sent, size / (form.format / 8));
    transfer.sent += size;
    transfer.lastProgress = std::chrono::steady_clock::now();
}

void SelectionServer::handle(const xcb_destroy_notify_event_t &notify)
{
    std::erase_if(m_transfers,
                  [&](const auto &transfer) { return transfer.first.requestor == notify.window; });
}

void SelectionServer::forget(Place place)
{
    if (m_transfers.erase(place) == 0)
        return;
    const bool isLast = std::ranges::none_of(
        m_transfers, [&](const auto &transfer) { return transfer.first.requestor == place.requestor; });
    const quint32 none = XCB_EVENT_MASK_NO_EVENT;
    if (isLast)
        xcb_change_window_attributes(m_session.connection(), place.requestor, XCB_CW_EVENT_MASK, &none);
}

std::optional<SelectionServer::Time> SelectionServer::nextTimeout() const
{
    std::optional<Time> next;
    for (const auto &[place, transfer] : m_transfers)
        next = std::min(next.value_or(Time::max()), transfer.lastProgress + stallLimit);
    return next;
}

void SelectionServer::dropStalled()
{
    const Time now = std::chrono::steady_clock::now();
    std::vector<Place> stalled;
    for (const auto &[place, transfer] : m_transfers) {
        if (transfer.lastProgress + stallLimit <= now)
            stalled.push_back(place);
    }
    if (stalled.empty())
        return;
    for (const Place &place : stalled)
        forget(place);
    xcb_flush(m_session.connection());
}

} // namespace tovi
