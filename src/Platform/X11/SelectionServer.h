// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>

#include "Platform/Pasteboard.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

/// Answers other programs that ask for a selection we own. One thread; waits for nobody.
class SelectionServer
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `window` is the selection's owner.
    SelectionServer(XcbSession &session, xcb_window_t window);

    /// What is served from now on; transfers under way go on with what they began.
    void setContents(const QList<PasteboardItem> &contents);
    /// When the server accepted our ownership.
    void setTimestamp(xcb_timestamp_t timestamp) { m_timestamp = timestamp; }
    /// The forms on offer as the protocol lists them.
    QList<xcb_atom_t> targets();

    void handle(const xcb_selection_request_event_t &request);
    void handle(const xcb_property_notify_event_t &notify);
    void handle(const xcb_destroy_notify_event_t &notify);

    /// When to call dropStalled() next; none while no transfer is under way.
    std::optional<Time> nextTimeout() const;
    void dropStalled();

private:
    struct Place
    {
        xcb_window_t requestor;
        xcb_atom_t property;
        auto operator<=>(const Place &) const = default;
    };
    struct Form
    {
        xcb_atom_t target;
        xcb_atom_t type;
        quint8 format;
        QByteArray data;
    };
    struct Transfer
    {
        Form form;
        qsizetype sent = 0;
        Time lastProgress;
    };

    bool convert(Place place, xcb_atom_t target);
    bool convertMultiple(Place place);
    void put(Place place, xcb_atom_t type, quint8 format, const void *data, qsizetype items);
    void sendPiece(Place place, Transfer &transfer);
    void forget(Place place);

    XcbSession &m_session;
    const xcb_window_t m_window;
    xcb_timestamp_t m_timestamp = XCB_CURRENT_TIME;
    QList<Form> m_forms;
    std::map<Place, Transfer> m_transfers;
};

} // namespace tovi
