// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/DispatchQueue.h"
#include "Platform/Platform.h"

namespace tovi {

/// Where the main thread has the pasteboard read, whose owner may hang.
struct PasteboardQueue
{
    static DispatchQueue &shared() { return Platform::current().shared<PasteboardQueue>().queue; }
    DispatchQueue queue{QStringLiteral("com.brevoll.tovi.pasteboard")};
};

} // namespace tovi
