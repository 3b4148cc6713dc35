// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QUrl>
#include <X11/keysym.h>

#include "Bench.h"
#include "ChromiumArguments.h"
#include "DesktopSession.h"

namespace tovi::bench {

namespace {

const QString sample = QStringLiteral("The weather has been unusually warm this week.");
constexpr int rounds = 20;

struct Target
{
    const char *name;
    QString program;
    QStringList arguments;
    QString title;
    QStringList roads;
    QString copyKeys; ///< as the command-line tool names them
    bool isTerminal = false;
};

QString tool(const char *name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

QList<Target> targets(const DesktopSession &desktop)
{
    const QString file = desktop.writeFile(QStringLiteral("sample.txt"), sample);
    const QString page = desktop.writeFile(QStringLiteral("sample.html"),
                                           QStringLiteral("<title>sample page</title><p>%1</p>").arg(sample));
    const QString menu = QStringLiteral("menu");
    const QString copy = QStringLiteral("copy");
    const QString controlC = QStringLiteral("ctrl+c");
    return {{"GTK editor (mousepad)",
             QStringLiteral("mousepad"),
             {QStringLiteral("--disable-server"), file},
             QStringLiteral("sample"),
             {menu, copy},
             controlC},
            {"Qt editor (featherpad)",
             QStringLiteral("featherpad"),
             {QStringLiteral("--standalone"), file},
             QStringLiteral("sample"),
             {menu, copy},
             controlC},
            {"Chromium, page",
             QStringLiteral("chromium"),
             chromiumArguments(desktop, {QStringLiteral("--remote-debugging-port=0"), page}),
             QStringLiteral("Chromium"),
             {QStringLiteral("script"), copy},
             controlC},
            {"terminal (lxterminal)",
             QStringLiteral("lxterminal"),
             {QStringLiteral("-t"), QStringLiteral("sample"), QStringLiteral("-e"),
              QStringLiteral("bash -c \"cat %1; sleep 600\"").arg(file)},
             QStringLiteral("sample"),
             {menu, copy},
             QStringLiteral("ctrl+shift+c"),
             true}};
}

/// The times of a road, empty when one of them gave another text.
Samples timesOf(DesktopSession &desktop, const QStringList &arguments, const QString &expected)
{
    Samples samples;
    QProcess *process = desktop.start(tool("tovi-road"), arguments);
    DesktopSession::eventually([&] { return !process || process->state() == QProcess::NotRunning; });
    while (process && process->canReadLine()) {
        const QList<QByteArray> parts = process->readLine().trimmed().split(' ');
        if (!QUrl::fromPercentEncoding(parts.value(1)).contains(expected))
            return {};
        samples.add(parts.value(0).toDouble());
    }
    return samples;
}

/// One keystroke and one reading by command-line tools, both of them processes.
Samples toolTimes(const Target &target)
{
    Samples samples;
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        QProcess key;
        key.start(QStringLiteral("xdotool"), {QStringLiteral("key"), target.copyKeys});
        key.waitForFinished(5000);
        QProcess reading;
        reading.start(QStringLiteral("xclip"),
                      {QStringLiteral("-o"), QStringLiteral("-selection"), QStringLiteral("clipboard")});
        reading.waitForFinished(5000);
        samples.add(double(timer.nsecsElapsed()) / 1e6);
    }
    return samples;
}

void select(DesktopSession &desktop, const Target &target, const QRect &area)
{
    if (target.isTerminal) {
        desktop.click(area.topLeft() + QPoint(40, 30), 3);
        desktop.click(area.topLeft() + QPoint(40, 15), 3);
    } else {
        desktop.click(area.center());
        desktop.pressKey(XK_a, {XK_Control_L});
    }
    DesktopSession::rest(std::chrono::milliseconds(200));
}

void benchTarget(DesktopSession &desktop, const Target &target)
{
    QProcess *process = DesktopSession::isInstalled(target.program)
                            ? desktop.start(target.program, target.arguments)
                            : nullptr;
    const auto window = process ? desktop.waitForWindow(target.title) : 0;
    if (!window) {
        std::printf("  %-58s not installed or not shown\n", target.name);
        return;
    }
    const QString name = QLatin1String(target.name);
    const QString count = QString::number(rounds);
    // Applications handle their first keys, and join the accessibility bus, when they come to it.
    DesktopSession::eventually([&] {
        select(desktop, target, desktop.geometry(window));
        return !timesOf(desktop, {target.roads.first(), QStringLiteral("1")}, sample).values.empty();
    });
    Samples copyOnly;
    for (const QString &road : target.roads) {
        const Samples times = timesOf(desktop, {road, count}, sample);
        printRow(name + QStringLiteral(": ") + road, times, "ms");
        if (road != QLatin1String("script")) {
            const Samples kept = timesOf(desktop, {road, count, QStringLiteral("keep")}, sample);
            printRow(name + QStringLiteral(": ") + road + QStringLiteral(", not put back"), kept, "ms");
            if (road == QLatin1String("copy"))
                copyOnly = kept;
        }
    }
    const Samples tools = toolTimes(target);
    printRow(name + QStringLiteral(": key tool, then clipboard tool"), tools, "ms");
    if (!copyOnly.values.empty())
        std::printf("  %-58s %8.2f\n", "  copy, not put back : tools", copyOnly.median() / tools.median());
    desktop.end(process);
}

} // namespace

void benchRoads(DesktopSession &desktop)
{
    printHeading(
        "Other roads to the selection (with what is waited before the clipboard is put back: 50 ms)");
    for (const Target &target : targets(desktop))
        benchTarget(desktop, target);
    QProcess *process =
        desktop.start(tool("tovi-copytarget"), {QStringLiteral("--disabled"), QStringLiteral("x")});
    if (process && desktop.waitForWindow(QStringLiteral("copy target")))
        printRow(QStringLiteral("menu and copy where nothing is copied"),
                 timesOf(desktop, {QStringLiteral("any"), QStringLiteral("5")}, QString()), "ms");
    if (process)
        desktop.end(process);
}

} // namespace tovi::bench
