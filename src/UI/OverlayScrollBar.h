// SPDX-License-Identifier: MIT
#pragma once

class QAbstractScrollArea;

namespace tovi::OverlayScrollBar {

/// How wide the bar is, in points. Its place is kept free always, so that lines do not move when it appears.
inline constexpr int width = 8;

/// Gives the area a vertical bar without buttons that is there only while there is something to scroll.
void install(QAbstractScrollArea &area);

} // namespace tovi::OverlayScrollBar
