// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>

#include "Platform/Linux/PrimarySelection.h"
#include "Platform/X11/XcbSession.h"

namespace tovi {

/// The X server's PRIMARY selection, read over a connection of its own, so that no other part of the program
/// waits for a selection's owner.
class XcbPrimarySelection final : public PrimarySelection
{
public:
    Answer read(const ActiveWindow &window, QDeadlineTimer deadline) override;

private:
    Answer readLocked(const ActiveWindow &window, const QDeadlineTimer &deadline);
    bool ownedBy(xcb_window_t owner, const ActiveWindow &window);

    std::timed_mutex m_mutex; ///< guards the rest
    std::optional<XcbSession> m_session;
};

} // namespace tovi
