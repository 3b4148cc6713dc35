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
/// Text out of pictures. The texts are made from the seed, or taken from a file whose sections begin with "#
/// " and a kind's name.
void benchRecognition(quint32 seed, const QString &textFile);
void benchRoads(DesktopSession &desktop);
void benchScreenshots(DesktopSession &desktop);
void benchProgram(DesktopSession &desktop, const Programs &programs, double queryMilliseconds);

} // namespace tovi::bench
