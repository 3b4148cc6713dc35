// SPDX-License-Identifier: MIT
#include "Capture/ScreenSelectionController.h"

#include "Platform/Platform.h"
#include "Platform/SystemLog.h"

namespace tovi {

ScreenSelectionController &ScreenSelectionController::shared()
{
    return Platform::current().shared<ScreenSelectionController>();
}

void ScreenSelectionController::begin(const Completion &completion)
{
    Platform::current().systemLog().write(
        QStringLiteral("Tovi: this build cannot recognise text in a region"));
    completion(std::nullopt);
}

} // namespace tovi
