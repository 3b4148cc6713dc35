// SPDX-License-Identifier: MIT
#include "Capture/OCRCapturer.h"

#include <cmath>

#include <QCoreApplication>
#include <QImage>

#include "Capture/OCRCaptureGeometry.h"
#include "Platform/Clock.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/SystemLog.h"
#include "Platform/TextRecognizer.h"
#include "Platform/Workspace.h"

namespace tovi::OCRCapturer {

namespace {

const QStringList &recognitionLanguages()
{
    static const QStringList languages{QStringLiteral("zh-Hans"), QStringLiteral("zh-Hant"),
                                       QStringLiteral("en-US"), QStringLiteral("ja-JP"),
                                       QStringLiteral("ko-KR")};
    return languages;
}

void log(const QString &line)
{
    Platform::current().systemLog().write(QStringLiteral("Tovi OCR ") + line);
}

/// As "%.2f" in the C locale.
QString secondsSince(Clock::Time start)
{
    return QString::number(seconds(Platform::current().clock().now() - start), 'f', 2);
}

ContentFilter contentFilter(quint32 display, const ShareableContent &content)
{
    const qint64 ownProcess = QCoreApplication::applicationPid();
    if (content.applications.contains(ownProcess))
        return {.display = display, .excludedApplication = ownProcess};
    ContentFilter filter{.display = display};
    for (const ShareableContent::Window &window : content.windows) {
        if (window.processIdentifier == ownProcess)
            filter.excludedWindows << window.windowID;
    }
    return filter;
}

/// None when there is no picture; the log says why where somebody failed.
QCoro::Task<std::optional<QImage>> captureScreen(QRectF rect)
{
    const QList<Screen> screens = Platform::current().workspace().screens();
    QList<QRectF> frames;
    for (const Screen &screen : screens)
        frames << screen.frame;
    const auto index = OCRCaptureGeometry::screenIndex(rect, frames);
    if (!index)
        co_return std::nullopt;
    const Screen screen = screens[*index];
    const auto localRect = OCRCaptureGeometry::localRect(rect, screen.frame);
    if (!localRect)
        co_return std::nullopt;

    ScreenCapture &screenCapture = Platform::current().screenCapture();
    try {
        const auto contentRequest = screenCapture.shareableContent();
        const ShareableContent content = co_await contentRequest;
        if (!content.displays.contains(screen.displayNumber))
            co_return std::nullopt;
        const auto pixels = [&screen](double points) {
            return std::max(1, int(std::ceil(screen.backingScaleFactor * points)));
        };
        const StreamConfiguration configuration{
            .sourceRect = *localRect, .size = {pixels(localRect->width()), pixels(localRect->height())}};
        const auto filter = contentFilter(screen.displayNumber, content);
        const auto screenshot = screenCapture.captureImage(filter, configuration);
        const QImage image = co_await screenshot;
        co_return image;
    } catch (const std::exception &error) {
        log(QStringLiteral("ScreenCaptureKit failed: ") + QString::fromUtf8(error.what()));
    }
    co_return std::nullopt;
}

/// Empty when nothing was read.
QCoro::Task<QString> recognize(QImage image, std::stop_token stop)
{
    const Clock::Time start = Platform::current().clock().now();
    log(QStringLiteral("recognition started"));
    QStringList lines;
    try {
        const auto recognition = Platform::current().textRecognizer().recognize(
            {.image = std::move(image), .languages = recognitionLanguages(), .stop = stop});
        const QList<RecognizedText> observations = co_await recognition;
        for (const RecognizedText &observation : observations)
            lines << observation.text;
        log(QStringLiteral("recognition finished in %1s").arg(secondsSince(start)));
    } catch (const std::exception &error) {
        if (!stop.stop_requested())
            log(QStringLiteral("recognition failed: ") + QString::fromUtf8(error.what()));
    }
    const QString text = lines.join(QLatin1Char('\n')).trimmed();
    co_return text;
}

} // namespace

QCoro::Task<OCRResult> recognizeText(QRectF rect, std::function<void(OCRProgress)> onProgress,
                                     std::stop_token stop)
{
    if (onProgress)
        onProgress(OCRProgress::capturing);
    const Clock::Time start = Platform::current().clock().now();
    log(QStringLiteral("capture started"));
    auto capture = captureScreen(rect);
    std::optional<QImage> image = co_await capture;
    if (!image)
        co_return OCRResult{.kind = OCRResult::Kind::permissionDenied};
    log(QStringLiteral("captured %1x%2 in %3s")
            .arg(image->width())
            .arg(image->height())
            .arg(secondsSince(start)));
    if (onProgress)
        onProgress(OCRProgress::recognizing);
    auto recognition = recognize(std::move(*image), stop);
    const QString text = co_await recognition;
    if (!text.isEmpty())
        co_return OCRResult{.kind = OCRResult::Kind::text, .text = text};
    const bool mayRecord = Platform::current().screenCapture().preflightAccess();
    co_return OCRResult{.kind = mayRecord ? OCRResult::Kind::noText : OCRResult::Kind::permissionDenied};
}

} // namespace tovi::OCRCapturer
