// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Linux/ActiveWindow.h"
#include "Platform/X11/XcbSideConnection.h"

namespace tovi {

/// The active window as the window manager announces it; its id is the X window's.
class XcbActiveWindow final : public ActiveWindowSource
{
public:
    std::optional<ActiveWindow> activeWindow() override;

private:
    XcbSideConnection m_connection;
};

} // namespace tovi
