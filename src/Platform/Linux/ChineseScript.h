// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include "Platform/Linux/TesseractEngines.h"

namespace tovi {

/// How much more the picture of a line looks Traditional than Simplified, of what is read in it: each
/// character that has two forms is compared with both of them as a font draws them, since the data for one
/// script read the other and write it their way. About 0.3 for each that is clear, below 0 for Simplified. 0
/// without such characters or a font that has them. Any thread.
double traditionalLook(const TesseractReading &reading, const QImage &line);

} // namespace tovi
