// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QDeadlineTimer>
#include <QList>

#include "Platform/X11/XcbSession.h"

namespace tovi {

/// Reads a selection from its owner. Made for one read: nobody takes an answer that comes too late. Data over
/// 64 MiB counts as none.
class XcbSelectionTransfer
{
public:
    enum class Status {
        Done,
        Refused,  ///< nobody owns the selection, or not in this form
        TimedOut, ///< the owner was silent too long, or the deadline passed
        Broken    ///< the server is gone
    };
    struct Value
    {
        xcb_atom_t type = XCB_ATOM_NONE;
        quint8 format = 0;
        QByteArray data;
    };
    struct Result
    {
        Status status = Status::Broken;
        Value value = {};
    };

    /// The session must be open and outlive the transfer. The owner may be silent for `silence` each time,
    /// and everything ends at the deadline.
    XcbSelectionTransfer(XcbSession &session, xcb_atom_t selection, QDeadlineTimer deadline,
                         std::chrono::nanoseconds silence);
    ~XcbSelectionTransfer();
    XcbSelectionTransfer(const XcbSelectionTransfer &) = delete;

    Result convert(xcb_atom_t target);

    struct Targets
    {
        Status status;
        QList<xcb_atom_t> atoms;
    };
    Targets targets();

    /// The contents as plain text in the best form that `offered` names.
    struct Text
    {
        Status status;
        QString text;
    };
    Text text(const QList<xcb_atom_t> &offered);

    /// What bytes of a form and a label say.
    static QString decoded(const QByteArray &data, bool isLatin1);

private:
    Result receiveIncrements();
    std::optional<Value> takeProperty();
    Status silenceStatus();
    /// The next event that `wanted` accepts; null after too long a silence or when the server is gone.
    template <class Wanted>
    XcbOwned<xcb_generic_event_t> waitFor(Wanted wanted);

    XcbSession &m_session;
    xcb_connection_t *const m_server;
    const xcb_atom_t m_selection;
    const QDeadlineTimer m_deadline;
    const std::chrono::nanoseconds m_silence;
    xcb_window_t m_requestor = XCB_WINDOW_NONE;
    xcb_atom_t m_property = XCB_ATOM_NONE;
    bool m_isAnswerDue = false; ///< the owner may still write to the requestor
};

} // namespace tovi
