// SPDX-License-Identifier: MIT
#include "Platform/X11/XcbPrimarySelection.h"

#include "Platform/X11/XcbSelectionTransfer.h"

namespace tovi {

namespace {

PrimarySelection::Status statusOf(XcbSelectionTransfer::Status status)
{
    switch (status) {
    case XcbSelectionTransfer::Status::Done:
        return PrimarySelection::Status::Text;
    case XcbSelectionTransfer::Status::Refused:
        return PrimarySelection::Status::NoText;
    case XcbSelectionTransfer::Status::TimedOut:
        return PrimarySelection::Status::TimedOut;
    case XcbSelectionTransfer::Status::Broken:
        break;
    }
    return PrimarySelection::Status::Unavailable;
}

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
    return readLocked(window, deadline);
}

PrimarySelection::Answer XcbPrimarySelection::readLocked(const ActiveWindow &window,
                                                         const QDeadlineTimer &deadline)
{
    const auto owner = m_session->reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(m_session->connection(), XCB_ATOM_PRIMARY));
    if (!owner)
        return {Status::Unavailable, {}};
    if (owner->owner == XCB_WINDOW_NONE || !ownedBy(owner->owner, window))
        return {Status::NotOwner, {}};

    XcbSelectionTransfer transfer(*m_session, XCB_ATOM_PRIMARY, deadline, std::chrono::nanoseconds::max());
    const auto offered = transfer.targets();
    if (offered.status != XcbSelectionTransfer::Status::Done)
        return {statusOf(offered.status), {}};
    if (offered.atoms.contains(m_session->atom("x-kde-passwordManagerHint")))
        return {Status::NoText, {}};
    const auto answer = transfer.text(offered.atoms);
    const bool isEmpty = answer.status == XcbSelectionTransfer::Status::Done && answer.text.isEmpty();
    return {isEmpty ? Status::NoText : statusOf(answer.status), answer.text};
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

} // namespace tovi
