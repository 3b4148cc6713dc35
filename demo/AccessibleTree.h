// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>
#include <QString>

namespace tovi {

/// What a program shows to assistive programs, read back over the accessibility bus.
namespace AccessibleTree {

struct Node
{
    QString role; ///< as AT-SPI names it: "frame", "push button", "text"
    QString name;
    QString text;  ///< of objects that have text
    QRect extents; ///< on the screen, in its pixels; empty where nothing is shown
};

/// Switches the session's accessibility bus on, as a screen reader does at its start.
bool enable();
/// All objects of the program with this process identifier, top down; empty when it is not on the bus.
QList<Node> read(qint64 processIdentifier);

} // namespace AccessibleTree

} // namespace tovi
