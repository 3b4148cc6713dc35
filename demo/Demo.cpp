// SPDX-License-Identifier: MIT
// Shows on a desktop of its own that a selection in a real editor becomes a translation at a key press.
#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include "DemoSettings.h"
#include "DemoStage.h"
#include "WebDemo.h"

namespace {

using namespace tovi;

const char *strategyName(qint64 source)
{
    constexpr const char *names[] = {"accessibility", "browser script", "menu copy", "simulated copy",
                                     "OCR",           "pasteboard",     "manual"};
    return source >= 0 && source < qint64(std::size(names)) ? names[source] : "unknown";
}

int fail(const char *what)
{
    std::fprintf(stderr, "demonstration failed: %s\n", what);
    return 1;
}

void printPress(const char *which, const DemoStage::Press &press)
{
    std::printf("%s panel painted after %.1f ms, text after %.1f ms\n", which, press.panelMilliseconds,
                press.textMilliseconds);
}

int demonstrate(const QString &tovi, const QString &screenshotPath)
{
    const QString sampleText =
        QStringLiteral("The weather has been unusually warm this week, and the river is still rising.");
    DemoStage stage(tovi, {sampleText}, onDeviceEngine());
    if (!stage.error().isEmpty())
        return fail(qPrintable(stage.error()));

    const auto first = stage.translateLine(0);
    if (!stage.saveScreenshot(screenshotPath))
        return fail("the screenshot could not be saved");
    if (!first)
        return fail("no translation was painted; see the screenshot");
    stage.shows([](const QString &translation) { return !translation.isEmpty(); });
    const auto [source, translation] = stage.texts();
    const bool isFocusBack = stage.dismiss();
    const auto again = stage.translateLine(0);

    std::printf("captured text:      %s\n", qPrintable(source));
    std::printf("strategy:           %s\n", strategyName(first->source));
    std::printf("translation:        %s\n", qPrintable(translation));
    printPress("first key press:   ", *first);
    if (again)
        printPress("second key press:  ", *again);
    std::printf("screenshot:         %s\n", qPrintable(screenshotPath));

    if (source != sampleText)
        return fail("the captured text is not the selected one");
    if (translation.isEmpty() || translation == source)
        return fail("the text was not translated");
    if (!isFocusBack || !again)
        return fail("Esc did not give the keyboard back to the editor");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("tovi"), QStringLiteral("The program to show."), QStringLiteral("path"),
                      QStringLiteral("build/release/tovi")});
    parser.addOption({QStringLiteral("screenshot"), QStringLiteral("Where the screenshot goes."),
                      QStringLiteral("path"), QStringLiteral("build/demo.png")});
    parser.addOption(
        {QStringLiteral("web"), QStringLiteral("Show the web engines instead, with a server on this "
                                               "machine in place of the services.")});
    parser.process(app);
    const QString tovi = QFileInfo(parser.value(QStringLiteral("tovi"))).absoluteFilePath();
    const QString screenshot = QFileInfo(parser.value(QStringLiteral("screenshot"))).absoluteFilePath();
    if (!parser.isSet(QStringLiteral("web")))
        return demonstrate(tovi, screenshot);
    const QString problem = demonstrateWeb(tovi, screenshot);
    return problem.isEmpty() ? 0 : fail(qPrintable(problem));
}
