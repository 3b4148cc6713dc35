// SPDX-License-Identifier: MIT
#include "Capture/CaptureManager.h"

#include "Capture/AccessibilityCapturer.h"
#include "Capture/AppleScriptCapturer.h"
#include "Capture/ClipboardCapturer.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Settings.h"

namespace tovi {

namespace {

constexpr std::chrono::milliseconds copyTimeout{400};

/// The area around the pointer that text recognition reads.
QRectF recognitionRect(QPointF cursor)
{
    return {cursor.x() - 360, cursor.y() - 130, 720, 260};
}

QCoro::Task<std::optional<CaptureResult>> recognize(std::optional<QPointF> cursor,
                                                    std::optional<QString> appName,
                                                    CaptureManager::ProgressHandler onProgress,
                                                    std::stop_token stop)
{
    if (!cursor)
        co_return std::nullopt;
    auto recognition = OCRCapturer::recognizeText(recognitionRect(*cursor), onProgress, stop);
    const OCRResult result = co_await recognition;
    if (result.kind != OCRResult::Kind::text)
        co_return std::nullopt;
    co_return CaptureResult{.text = result.text, .source = CaptureSource::ocr, .appName = appName};
}

CaptureOptions currentOptions()
{
    const Settings &settings = Settings::shared();
    return {.browserScript = settings.browserScriptEnabled,
            .clipboardFallback = settings.clipboardFallback,
            .preferMenuBarCopy = settings.preferMenuBarCopy,
            .restoreClipboard = settings.restoreClipboard};
}

} // namespace

CaptureManager &CaptureManager::shared()
{
    return Platform::current().shared<CaptureManager>();
}

QCoro::Task<std::optional<CaptureResult>> CaptureManager::capture(bool preferOCR, std::optional<QPointF> at,
                                                                  ProgressHandler onOCRProgress,
                                                                  std::stop_token stop)
{
    const Clock::Time start = Platform::current().clock().now();
    // Named first, here and below: see the notes on coroutines.
    auto capture = captureInternal(preferOCR, at, std::move(onOCRProgress), stop);
    auto result = co_await capture;
    if (result)
        result->duration = seconds(Platform::current().clock().now() - start);
    co_return result;
}

QCoro::Task<std::optional<CaptureResult>> CaptureManager::captureInternal(bool preferOCR,
                                                                          std::optional<QPointF> at,
                                                                          ProgressHandler onOCRProgress,
                                                                          std::stop_token stop)
{
    Workspace &workspace = Platform::current().workspace();
    const auto cursor = at ? at : workspace.mouseLocation();
    const auto appName = workspace.frontmostName();
    const auto screens = workspace.screens();
    const double primaryHeight = screens.isEmpty() ? 0 : screens.first().frame.height();

    if (!preferOCR) {
        const auto capture = syncCapture(cursor, appName, primaryHeight);
        auto result = co_await capture;
        if (result || !Settings::shared().ocrEnabled)
            co_return result;
    }
    auto recognition = recognize(cursor, appName, std::move(onOCRProgress), stop);
    co_return co_await recognition;
}

QFuture<std::optional<CaptureResult>> CaptureManager::syncCapture(std::optional<QPointF> cursor,
                                                                  std::optional<QString> appName,
                                                                  double primaryHeight)
{
    return m_queue.run([=, options = currentOptions()] {
        return performSyncCapture(cursor, appName, primaryHeight, options);
    });
}

std::optional<CaptureResult> CaptureManager::performSyncCapture(std::optional<QPointF> cursor,
                                                                const std::optional<QString> &appName,
                                                                double primaryHeight,
                                                                const CaptureOptions &options)
{
    const auto found = [&appName](const QString &text, CaptureSource source,
                                  std::optional<QRectF> bounds = std::nullopt) {
        return CaptureResult{.text = text, .source = source, .bounds = bounds, .appName = appName};
    };

    if (const auto focused = AccessibilityCapturer::focusedElement()) {
        if (const auto text = AccessibilityCapturer::selectedText(*focused))
            return found(*text, CaptureSource::accessibility,
                         AccessibilityCapturer::selectionBounds(*focused, primaryHeight));
    }
    if (cursor) {
        if (const auto selection = AccessibilityCapturer::selectedText(*cursor, primaryHeight))
            return found(selection->text, CaptureSource::accessibility, selection->bounds);
    }
    if (options.browserScript) {
        if (const auto text = AppleScriptCapturer::selectedText())
            return found(*text, CaptureSource::browserScript);
    }
    if (options.clipboardFallback) {
        if (const auto copied = ClipboardCapturer::selectedText(options.restoreClipboard,
                                                                options.preferMenuBarCopy, copyTimeout))
            return found(copied->text,
                         copied->usedMenuBar ? CaptureSource::menuBarCopy : CaptureSource::clipboard);
    }
    return {};
}

} // namespace tovi
