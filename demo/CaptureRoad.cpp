// SPDX-License-Identifier: MIT
// Takes one road to the selection of the frontmost application, for tests and measurements:
//     tovi-road menu|copy|script|any [COUNT] [keep]
// ("any": the menu, then the key; "keep": the clipboard keeps what was copied)
// prints a line for each of COUNT times: how long it took in milliseconds, then the text, percent-encoded.
#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>

#include "Capture/AppleScriptCapturer.h"
#include "Capture/ClipboardCapturer.h"
#include "Capture/MenuBarCopyCapturer.h"
#include "Platform/Accessibility.h"
#include "Platform/DispatchQueue.h"
#include "Platform/X11/X11Platform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

std::optional<QString> capture(const QString &road, bool restore)
{
    if (road == QLatin1String("script"))
        return AppleScriptCapturer::selectedText();
    const bool isMenu = road == QLatin1String("menu");
    const bool isAny = road == QLatin1String("any");
    const auto copied = ClipboardCapturer::selectedText(restore, isMenu || isAny, 400ms);
    const bool isWanted = copied && (isAny || copied->usedMenuBar == isMenu);
    return isWanted ? std::optional(copied->text) : std::nullopt;
}

void captureRepeatedly(const QString &road, int count, bool restore)
{
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        const auto text = capture(road, restore);
        std::printf("%.2f %s\n", double(timer.nsecsElapsed()) / 1e6,
                    text ? QUrl::toPercentEncoding(*text).constData() : "");
        std::fflush(stdout);
    }
}

} // namespace
} // namespace tovi

int main(int argc, char **argv)
{
    using namespace tovi;
    X11Platform::prepareEnvironment();
    QApplication app(argc, argv);
    X11Platform platform;
    platform.accessibility().requestTrust();
    const QStringList arguments = QCoreApplication::arguments();
    const QString road = arguments.value(1);
    const int count = std::max(arguments.value(2).toInt(), 1);
    DispatchQueue queue(QStringLiteral("capture"));
    const bool restore = arguments.value(3) != QLatin1String("keep");
    // The accessibility bus tells its address a moment later.
    QTimer start;
    QObject::connect(&start, &QTimer::timeout, [&] {
        if (!platform.accessibility().isProcessTrusted())
            return;
        start.stop();
        queue.run([&] { captureRepeatedly(road, count, restore); }).then(&app, [] {
            QCoreApplication::quit();
        });
    });
    start.start(5);
    return QApplication::exec();
}
