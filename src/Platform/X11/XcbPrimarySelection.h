// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>

#include "Platform/Linux/PrimarySelection.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

/// The X server's PRIMARY selection, read over a connection of its own, so that no other part of the program
/// waits for a selection's owner. Texts over 16 MiB count as no text.
class XcbPrimarySelection final : public PrimarySelection
{
public:
    Answer read(const ActiveWindow &window, QDeadlineTimer deadline) override;

private:
    struct Property
    {
        xcb_atom_t type = XCB_ATOM_NONE;
        quint8 format = 0;
        QByteArray data;
    };
    struct Transfer
    {
        Status status = Status::Unavailable;
        Property property;
    };

    Answer readLocked(const ActiveWindow &window, const QDeadlineTimer &deadline);
    bool ownedBy(xcb_window_t owner, const ActiveWindow &window);
    Transfer convert(xcb_atom_t target, const QDeadlineTimer &deadline);
    Transfer receiveIncrements(const QDeadlineTimer &deadline);
    std::optional<Property> takeProperty();
    /// The next event that `wanted` accepts; null at the deadline or when the server is gone.
    template <class Wanted>
    XcbOwned<xcb_generic_event_t> waitFor(Wanted wanted, const QDeadlineTimer &deadline);

    std::timed_mutex m_mutex; ///< guards the rest
    std::optional<XcbSession> m_session;
    xcb_connection_t *m_server = nullptr;       ///< during a read
    xcb_window_t m_requestor = XCB_WINDOW_NONE; ///< during a read
    xcb_atom_t m_property = XCB_ATOM_NONE;
};

} // namespace tovi
