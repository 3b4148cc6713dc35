// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <stop_token>

#include <QPointF>
#include <qcorotask.h>

#include "Capture/CaptureResult.h"
#include "Capture/OCRCapturer.h"
#include "Platform/DispatchQueue.h"

namespace tovi {

/// Which optional strategies a capture may use: a snapshot of the settings, taken on the main thread.
struct CaptureOptions
{
    bool browserScript = true;
    bool clipboardFallback = true;
    bool preferMenuBarCopy = true;
    bool restoreClipboard = true;
};

/// Finds the text that the user has selected in the frontmost application. Main thread; the synchronous
/// strategies run one capture at a time on the capture queue. Points are in screen coordinates (origin
/// bottom-left of the primary screen, y up).
class CaptureManager
{
public:
    using ProgressHandler = std::function<void(OCRProgress)>;

    static CaptureManager &shared();

    /// The first text that a strategy yields, else none; never throws. `at` defaults to the pointer; where
    /// that is unknown too, the strategies that look at a place on the screen are left out. Once stopped,
    /// text recognition ends early; the outcome is of no interest then.
    QCoro::Task<std::optional<CaptureResult>> capture(bool preferOCR, std::optional<QPointF> at,
                                                      ProgressHandler onOCRProgress,
                                                      std::stop_token stop = {});

private:
    QCoro::Task<std::optional<CaptureResult>> captureInternal(bool preferOCR, std::optional<QPointF> at,
                                                              ProgressHandler onOCRProgress,
                                                              std::stop_token stop);
    QFuture<std::optional<CaptureResult>> syncCapture(std::optional<QPointF> cursor,
                                                      std::optional<QString> appName, double primaryHeight);
    /// The strategies that block, cheapest first; the first text wins. Capture queue.
    static std::optional<CaptureResult> performSyncCapture(std::optional<QPointF> cursor,
                                                           const std::optional<QString> &appName,
                                                           double primaryHeight,
                                                           const CaptureOptions &options);

    DispatchQueue m_queue{QStringLiteral("com.brevoll.tovi.capture")};
};

} // namespace tovi
