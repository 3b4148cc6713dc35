// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "Samples.h"

class QProcess;

namespace tovi {
class DesktopSession;
}

namespace tovi::bench {

/// The programs that are measured.
struct Programs
{
    QString tovi;
    QString floor;
};

void benchLookups();
void benchPanels();
void benchStreams();
double benchAccessibility(DesktopSession &desktop);
void benchRoads(DesktopSession &desktop);
void benchProgram(DesktopSession &desktop, const Programs &programs, double queryMilliseconds);

} // namespace tovi::bench
