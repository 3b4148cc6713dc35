// SPDX-License-Identifier: MIT
// Measures Tovi on a desktop of its own. Figures of one run compare with each other, not with those of
// another.
#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

#include "Bench.h"
#include "DemoSettings.h"
#include "DesktopSession.h"

int main(int argc, char **argv)
{
    using namespace tovi;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0); // a run that is cut off has shown what it had
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("tovi"), QStringLiteral("The program to measure."),
                      QStringLiteral("path"), QStringLiteral("build/release/tovi")});
    parser.addOption({QStringLiteral("no-desktop"), QStringLiteral("Leave out what needs a desktop.")});
    parser.addOption({QStringLiteral("roads"), QStringLiteral("Only the roads to the selection.")});
    parser.addOption({QStringLiteral("recognition"), QStringLiteral("Only the text in pictures.")});
    parser.addOption({QStringLiteral("no-recognition"),
                      QStringLiteral("Leave out the text in pictures, which takes minutes.")});
    parser.addOption({QStringLiteral("seed"), QStringLiteral("Makes other pictures of text."),
                      QStringLiteral("number"), QStringLiteral("5000")});
    parser.addOption({QStringLiteral("texts"),
                      QStringLiteral("Pictures of the lines of a file, each kind after a line \"# kind\"."),
                      QStringLiteral("file")});
    parser.process(app);
    if (parser.isSet(QStringLiteral("recognition"))) {
        bench::benchRecognition(parser.value(QStringLiteral("seed")).toUInt(),
                                parser.value(QStringLiteral("texts")));
        return 0;
    }

    const bench::Programs programs{QFileInfo(parser.value(QStringLiteral("tovi"))).absoluteFilePath(),
                                   QCoreApplication::applicationDirPath() + QStringLiteral("/tovi-floor")};
    if (!parser.isSet(QStringLiteral("roads"))) {
        bench::benchLookups();
        bench::benchStreams();
        bench::benchPanels();
        if (!parser.isSet(QStringLiteral("no-recognition")))
            bench::benchRecognition(parser.value(QStringLiteral("seed")).toUInt(), QString());
    }
    if (parser.isSet(QStringLiteral("no-desktop")))
        return 0;
    DesktopSession desktop({.trayHost = true});
    if (!desktop.error().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(desktop.error()));
        return 1;
    }
    writeDemoSettings(desktop);
    if (parser.isSet(QStringLiteral("roads"))) {
        bench::benchRoads(desktop);
        return 0;
    }
    const double query = bench::benchAccessibility(desktop);
    bench::benchRoads(desktop);
    bench::benchScreenshots(desktop);
    bench::benchProgram(desktop, programs, query);
    return 0;
}
