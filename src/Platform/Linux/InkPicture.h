// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QImage>

namespace tovi {

/// What is written on a screen, dark on white: each pixel by how much it differs from the ground it stands
/// on. Selections, buttons, gradients and dark windows are grounds; frames, rules and text cursors are gone.
/// A grey picture in, one of the same size out; a null one once stopped. Any thread.
QImage inkPicture(const QImage &gray, const std::function<bool()> &isStopped);

} // namespace tovi
