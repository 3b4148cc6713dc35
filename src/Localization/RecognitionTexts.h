// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include "Localization.h"

namespace tovi::RecognitionTexts {

/// Says that text in pictures cannot be read on this computer before the recogniser is installed.
QString notInstalled(AppLanguage language);

} // namespace tovi::RecognitionTexts
