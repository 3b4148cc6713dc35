// SPDX-License-Identifier: MIT
#include <csignal>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <X11/keysym.h>
#include <unistd.h>

#include "Bench.h"
#include "DesktopSession.h"
#include "TraceReader.h"

namespace tovi::bench {

namespace {

constexpr int rounds = 30;
constexpr auto idleTime = std::chrono::seconds(10);
constexpr auto settleTime = std::chrono::seconds(5);

/// The program, or the one it is measured against, started and ready.
struct Started
{
    std::unique_ptr<TraceReader> trace = std::make_unique<TraceReader>();
    QProcess *process = nullptr;
    double startMilliseconds = 0;
};

Started start(DesktopSession &desktop, const QString &program, const QStringList &arguments = {})
{
    Started started;
    const qint64 begin = TraceReader::now();
    started.process = desktop.start(program, arguments, {started.trace->environment()});
    started.trace->programStarted();
    if (const auto ready = started.trace->next("ready"))
        started.startMilliseconds = double(ready->nanoseconds - begin) / 1e6;
    return started;
}

double memoryMiB(qint64 pid, const char *key)
{
    QFile file(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!file.open(QFile::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    }
    return 0;
}

struct Activity
{
    qint64 wakeUps = 0;
    double cpuMilliseconds = 0;
};

Activity activity(qint64 pid)
{
    Activity sum;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(pid));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile status(tasks.filePath(task) + QStringLiteral("/status"));
        if (!status.open(QFile::ReadOnly))
            continue;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches"))
                sum.wakeUps += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (stat.open(QFile::ReadOnly)) {
        const QByteArray text = stat.readAll();
        const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
        sum.cpuMilliseconds = (fields.value(11).toDouble() + fields.value(12).toDouble()) * 1000 /
                              double(::sysconf(_SC_CLK_TCK));
    }
    return sum;
}

struct Idle
{
    double rss = 0;
    double pss = 0;
    Activity spent;
};

Idle measureIdle(DesktopSession &desktop, const QString &program)
{
    const Started started = start(desktop, program);
    const qint64 pid = started.process->processId();
    DesktopSession::rest(settleTime);
    const Activity before = activity(pid);
    DesktopSession::rest(idleTime);
    const Activity after = activity(pid);
    const Idle idle{memoryMiB(pid, "Rss:"),
                    memoryMiB(pid, "Pss:"),
                    {after.wakeUps - before.wakeUps, after.cpuMilliseconds - before.cpuMilliseconds}};
    desktop.end(started.process);
    return idle;
}

void benchStart(DesktopSession &desktop, const Programs &programs)
{
    printHeading(
        "Start to ready (shortcuts grabbed, tray shown) and idle, against the smallest tray program");
    Samples tovi;
    Samples floor;
    for (int i = 0; i < rounds; ++i) {
        for (const bool isTovi : {true, false}) {
            const Started started = start(desktop, isTovi ? programs.tovi : programs.floor);
            (isTovi ? tovi : floor).add(started.startMilliseconds);
            desktop.end(started.process);
        }
    }
    printRow(QStringLiteral("Tovi"), tovi, "ms");
    printRow(QStringLiteral("smallest tray program"), floor, "ms");
    printRatio(QStringLiteral("ratio of the medians"), tovi.median(), floor.median(), 1.5);

    const Idle mine = measureIdle(desktop, programs.tovi);
    const Idle least = measureIdle(desktop, programs.floor);
    std::printf("  idle memory: Tovi RSS %.1f MiB, PSS %.1f MiB; smallest tray program %.1f and %.1f\n",
                mine.rss, mine.pss, least.rss, least.pss);
    printRatio(QStringLiteral("ratio, resident"), mine.rss, least.rss, 1.5);
    printRatio(QStringLiteral("ratio, proportional"), mine.pss, least.pss, 1.5);
    std::printf(
        "  over 10 idle seconds: Tovi %.1f wake-ups/s and %.0f ms CPU; smallest tray program %.1f and %.0f\n",
        double(mine.spent.wakeUps) / 10, mine.spent.cpuMilliseconds, double(least.spent.wakeUps) / 10,
        least.spent.cpuMilliseconds);
}

double benchWindow(DesktopSession &desktop, const Programs &programs)
{
    const Started floor =
        start(desktop, programs.floor, {QStringLiteral("--windows"), QString::number(rounds)});
    Samples window;
    while (window.values.size() < size_t(rounds)) {
        const auto wanted = floor.trace->next("windowWanted");
        const auto painted = wanted ? floor.trace->next("windowPainted") : std::nullopt;
        if (!painted)
            break;
        window.add(double(painted->nanoseconds - wanted->nanoseconds) / 1e6);
    }
    desktop.end(floor.process);
    printRow(QStringLiteral("a new window with a text, to its first paint"), window, "ms");
    return window.median();
}

/// The longest that the running program's main thread kept a caller waiting, while `during` runs.
template <class Fn>
double longestAnswer(Fn isOver)
{
    double longest = 0;
    do {
        const qint64 asked = TraceReader::now();
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("com.brevoll.tovi"), QStringLiteral("/com/brevoll/tovi"),
            QStringLiteral("com.brevoll.tovi"), QStringLiteral("Run"));
        call << QStringList();
        QDBusConnection::sessionBus().call(call);
        longest = std::max(longest, double(TraceReader::now() - asked) / 1e6);
    } while (!isOver());
    return longest;
}

void benchPresses(DesktopSession &desktop, const Programs &programs, double queryMilliseconds)
{
    printHeading("Key press to painted panel, selection in a GTK editor");
    const double windowMilliseconds = benchWindow(desktop, programs);
    const QString file =
        desktop.writeFile(QStringLiteral("press.txt"), QStringLiteral("The river is still rising."));
    QProcess *editor = desktop.start(QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), file});
    const auto window = desktop.waitForWindow(QStringLiteral("press.txt"));
    const Started tovi = start(desktop, programs.tovi);
    DesktopSession::rest(settleTime);

    Samples started, captured, panel, text;
    for (int tries = 0; panel.values.size() < size_t(rounds) && tries < 3 * rounds; ++tries) {
        desktop.activate(window);
        desktop.click(desktop.geometry(window).center());
        desktop.pressKey(XK_a, {XK_Control_L});
        DesktopSession::rest(std::chrono::milliseconds(200));
        tovi.trace->clear();
        const qint64 pressed = desktop.pressKeyTimed(XK_d, XK_Alt_L);
        const auto begun = tovi.trace->next("captureStarted");
        const auto got = begun ? tovi.trace->next("captured") : std::nullopt;
        const auto painted = got ? tovi.trace->next("panelPainted") : std::nullopt;
        const auto hasText = painted ? tovi.trace->next("textPainted") : std::nullopt;
        if (hasText && got->numbers.value("source") >= 0) {
            const auto since = [pressed](const TraceReader::Mark &mark) {
                return double(mark.nanoseconds - pressed) / 1e6;
            };
            started.add(since(*begun));
            captured.add(since(*got));
            panel.add(since(*painted));
            text.add(since(*hasText));
        }
        desktop.pressKey(XK_Escape);
        DesktopSession::rest(std::chrono::milliseconds(200));
    }
    printRow(QStringLiteral("to the shortcut's action"), started, "ms");
    printRow(QStringLiteral("to the captured text"), captured, "ms");
    printRow(QStringLiteral("to the painted panel"), panel, "ms");
    printRow(QStringLiteral("to the painted translation (first from the engine, then cached)"), text, "ms");
    const double unavoidable = started.median() + queryMilliseconds + windowMilliseconds;
    std::printf("  unavoidable: key grab %.1f + accessibility query %.1f + new window %.1f = %.1f ms\n",
                started.median(), queryMilliseconds, windowMilliseconds, unavoidable);
    printRatio(QStringLiteral("painted panel against the unavoidable"), panel.median(), unavoidable, 1.5);

    printHeading("The editor is stopped (SIGSTOP) while it has the focus");
    Samples end, stall;
    for (int i = 0; i < 5 && editor; ++i) {
        ::kill(pid_t(editor->processId()), SIGSTOP);
        tovi.trace->clear();
        const qint64 pressed = desktop.pressKeyTimed(XK_d, XK_Alt_L);
        stall.add(longestAnswer([&] { return TraceReader::now() - pressed > 900'000'000; }));
        if (const auto got = tovi.trace->next("captured"))
            end.add(double(got->nanoseconds - pressed) / 1e6);
        ::kill(pid_t(editor->processId()), SIGCONT);
        desktop.pressKey(XK_Escape);
        DesktopSession::rest(std::chrono::milliseconds(300));
    }
    printRow(QStringLiteral("key press to the end of the capture"), end, "ms");
    printRow(QStringLiteral("longest answer of the main thread meanwhile (over D-Bus)"), stall, "ms");
    desktop.end(tovi.process);
    if (editor)
        desktop.end(editor);
}

} // namespace

void benchProgram(DesktopSession &desktop, const Programs &programs, double queryMilliseconds)
{
    benchStart(desktop, programs);
    benchPresses(desktop, programs, queryMilliseconds);
}

} // namespace tovi::bench
