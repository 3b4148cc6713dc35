// SPDX-License-Identifier: MIT
#include "Capture/OCRCapturer.h"

namespace tovi::OCRCapturer {

// Text recognition is not part of this build: nothing is captured, so no stage is ever reported.
QCoro::Task<OCRResult> recognizeText(QRectF, std::function<void(OCRProgress)>)
{
    co_return OCRResult{};
}

} // namespace tovi::OCRCapturer
