// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace tovi {

/// What is written on a screen, dark on white: each pixel by how much it differs from the ground it stands
/// on. Selections, buttons, gradients and dark windows are grounds; frames, rules and text cursors are gone.
/// A grey picture in, one of the same size out. Any thread.
QImage inkPicture(const QImage &gray);

} // namespace tovi
