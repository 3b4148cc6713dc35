// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <stop_token>

#include <QRectF>
#include <QString>
#include <qcorotask.h>

namespace tovi {

enum class OCRProgress {
    capturing,   ///< taking the picture
    recognizing, ///< reading it
};

struct OCRResult
{
    enum class Kind {
        text,
        noText,           ///< there is a picture, without text
        permissionDenied, ///< no picture, or nothing read while recording the screen is not allowed
    };
    Kind kind = Kind::noText;
    QString text = {}; ///< not empty and trimmed when the kind is text
};

namespace OCRCapturer {
/// Reads the text inside a rectangle (points, origin bottom-left of the primary screen, y up), windows of
/// this program left out. The progress callback may be empty. Once stopped, the outcome is of no interest and
/// comes soon. Main thread.
QCoro::Task<OCRResult> recognizeText(QRectF rect, std::function<void(OCRProgress)> onProgress,
                                     std::stop_token stop = {});
} // namespace OCRCapturer

} // namespace tovi
