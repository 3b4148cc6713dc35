// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QRectF>
#include <QString>
#include <qcorotask.h>

namespace tovi {

enum class OCRProgress { capturing, recognizing };

struct OCRResult
{
    enum class Kind {
        text,
        noText,
        permissionDenied,
    };
    Kind kind = Kind::noText;
    QString text; ///< non-empty and trimmed when the kind is text
};

namespace OCRCapturer {
/// Reads the text inside a rectangle (points, origin bottom-left of the primary screen, y up). Main thread;
/// the progress callback is called there too.
QCoro::Task<OCRResult> recognizeText(QRectF rect, std::function<void(OCRProgress)> onProgress);
} // namespace OCRCapturer

} // namespace tovi
