// SPDX-License-Identifier: MIT
#include <chrono>

#include <malloc.h>

#include <QFile>
#include <QScrollBar>
#include <QTextDocument>

#include "Bench.h"
#include "Support/TestPlatform.h"
#include "UI/ResultPanelManager.h"
#include "UI/ResultView.h"
#include "UI/TextHeightCache.h"

namespace tovi::bench {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

template <class Fn>
double millisecondsFor(Fn fn)
{
    const auto start = std::chrono::steady_clock::now();
    fn();
    return Milliseconds(std::chrono::steady_clock::now() - start).count();
}

void deliver()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/// A text of ten characters a piece, with or without paragraphs.
struct Growth
{
    Samples pieces; ///< milliseconds on the main thread for each
    double total = 0;
};

Growth grow(int count, bool hasParagraphs)
{
    const auto model = std::make_shared<ResultViewModel>(CaptureResult{.text = QStringLiteral("source")});
    ResultView view(model);
    view.resize(380, 480);
    view.show();
    deliver();
    Growth growth;
    QString text;
    for (int i = 0; i < count; ++i) {
        text += hasParagraphs && i % 40 == 39 ? QStringLiteral("new lines\n") : QStringLiteral("ten chars ");
        const double time = millisecondsFor([&] {
            model->translatedText = text;
            model->isLoading = false;
            deliver();
        });
        growth.pieces.add(time);
        growth.total += time;
    }
    return growth;
}

double residentMiB()
{
    ::malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QFile::ReadOnly) ? file.readAll().split(' ').value(1).toDouble() * 4 / 1024 : 0;
}

void openAndClose(int count)
{
    for (int i = 0; i < count; ++i) {
        const auto model =
            std::make_shared<ResultViewModel>(CaptureResult{.text = QStringLiteral("source %1").arg(i)});
        ResultPanelManager::shared().show(model, std::nullopt);
        model->translatedText = QStringLiteral("translation");
        deliver();
        model->onClose();
        deliver();
    }
}

} // namespace

void benchPanels()
{
    printHeading("Panel (drawn into memory)");
    TestPlatform platform;
    for (const bool hasParagraphs : {true, false}) {
        const Growth shortText = grow(1'000, hasParagraphs);
        const Growth longText = grow(10'000, hasParagraphs);
        const QString kind = hasParagraphs ? QStringLiteral("paragraphs") : QStringLiteral("one paragraph");
        printRow(QStringLiteral("a piece of 100 KB in 10,000, ") + kind, longText.pieces, "ms");
        std::printf("  %-58s %9.3f ms  (aim: at most 8)\n", "  99th percentile",
                    longText.pieces.quantile(0.99));
        printRatio(QStringLiteral("  total for a piece, 10,000 : 1,000"), longText.total / 10,
                   shortText.total, 1.5);
    }
    QFont font;
    font.setPixelSize(15);
    const QString sample = QStringLiteral("The weather has been unusually warm. ").repeated(50);
    Samples miss;
    Samples hit;
    for (int i = 0; i < 30; ++i) {
        const QString text = sample + QString::number(i);
        miss.add(1000 * millisecondsFor([&] { TextHeightCache::height(text, font, 352); }));
        hit.add(1000 * millisecondsFor([&] { TextHeightCache::height(text, font, 352); }));
    }
    printRow(QStringLiteral("text height, 1,850 characters, measured"), miss, "us");
    printRow(QStringLiteral("text height, 1,850 characters, known"), hit, "us");

    Samples shown;
    Samples resized;
    for (int i = 0; i < 30; ++i) {
        const auto model = std::make_shared<ResultViewModel>(CaptureResult{.text = sample});
        std::unique_ptr<ResultView> view;
        shown.add(millisecondsFor([&] {
            view = std::make_unique<ResultView>(model);
            view->resize(380, 280);
            view->show();
            deliver();
        }));
        model->translatedText = sample;
        deliver();
        resized.add(millisecondsFor([&] {
            view->resize(380, 480 - i);
            deliver();
        }));
    }
    printRow(QStringLiteral("a new view, to its first frame"), shown, "ms");
    printRow(QStringLiteral("a resize"), resized, "ms");

    openAndClose(50);
    const double after50 = residentMiB();
    openAndClose(450);
    std::printf("  %-58s %9.1f and %.1f MiB\n", "memory after 50 and after 500 panels", after50,
                residentMiB());
}

} // namespace tovi::bench
