// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Pasteboard.h"

namespace tovi {

/// The CLIPBOARD selection. Main thread.
class X11Pasteboard final : public Pasteboard
{
public:
    void setString(const QString &text) override;
};

} // namespace tovi
