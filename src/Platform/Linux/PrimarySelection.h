// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QString>

#include "Platform/Linux/ActiveWindow.h"

namespace tovi {

/// The text that was selected last on the desktop, whoever owns it.
class PrimarySelection
{
public:
    enum class Status {
        Text,       ///< there is text, and the window's application owns it
        NoText,     ///< the window's application owns it, and it is empty, not text, or marked secret
        NotOwner,   ///< nobody owns it, or another application does
        TimedOut,   ///< the owner did not answer in time
        Unavailable ///< no display server, or the transfer failed
    };
    struct Answer
    {
        Status status = Status::Unavailable;
        QString text;
    };

    virtual ~PrimarySelection() = default;
    /// Reads the text if it is owned by the client that owns `window`. Blocks at most until the deadline. Any
    /// thread but the main one.
    virtual Answer read(const ActiveWindow &window, QDeadlineTimer deadline) = 0;
};

} // namespace tovi
