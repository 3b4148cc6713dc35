// SPDX-License-Identifier: MIT
// Shows on a desktop of its own that a selection in a real editor becomes a translation at a key press.
#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <X11/keysym.h>

#include "AccessibleTree.h"
#include "DemoSettings.h"
#include "DesktopSession.h"
#include "TraceReader.h"

namespace {

using namespace tovi;

const QString sampleText =
    QStringLiteral("The weather has been unusually warm this week, and the river is still rising.");

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

struct Press
{
    double panelMilliseconds = 0;
    double textMilliseconds = 0;
    qint64 source = -1;
};

std::optional<Press> pressShortcut(const DesktopSession &desktop, TraceReader &trace)
{
    trace.clear();
    const qint64 pressed = desktop.pressKeyTimed(XK_d, XK_Alt_L);
    const auto captured = trace.next("captured");
    const auto panel = captured ? trace.next("panelPainted") : std::nullopt;
    const auto text = panel ? trace.next("textPainted") : std::nullopt;
    if (!text || text->numbers.value("failed") || captured->numbers.value("source") < 0)
        return std::nullopt;
    const auto since = [pressed](const TraceReader::Mark &mark) {
        return double(mark.nanoseconds - pressed) / 1e6;
    };
    return Press{since(*panel), since(*text), captured->numbers.value("source")};
}

/// Selects the editor's first line and translates it.
std::optional<Press> translateSelection(const DesktopSession &desktop, xcb_window_t editor,
                                        TraceReader &trace)
{
    const QRect area = desktop.geometry(editor);
    std::optional<Press> press;
    for (int attempt = 0; attempt < 5 && !press; ++attempt) {
        desktop.click(area.center());
        desktop.pressKey(XK_Home, {XK_Control_L});
        desktop.pressKey(XK_End, {XK_Shift_L});
        desktop.movePointer(area.topLeft() + QPoint(40, 120));
        DesktopSession::rest(std::chrono::milliseconds(300));
        press = pressShortcut(desktop, trace);
        if (!press) {
            desktop.pressKey(XK_Escape);
            DesktopSession::eventually([&] { return desktop.activeWindow() == editor; },
                                       std::chrono::seconds(5));
        }
    }
    return press;
}

int demonstrate(const QString &tovi, const QString &screenshotPath)
{
    DesktopSession desktop;
    if (!desktop.error().isEmpty())
        return fail(qPrintable(desktop.error()));
    writeDemoSettings(desktop);
    const QString file = desktop.writeFile(QStringLiteral("letter.txt"), sampleText + QLatin1Char('\n'));
    if (!desktop.start(QStringLiteral("mousepad"), {file}))
        return fail("the editor did not start");
    const auto editor = desktop.waitForWindow(QStringLiteral("letter.txt"));
    if (!editor)
        return fail("the editor's window did not appear");

    TraceReader trace;
    QProcess *program = desktop.start(tovi, {}, {trace.environment()});
    trace.programStarted();
    if (!program || !trace.next("ready"))
        return fail("Tovi did not start");

    const auto first = translateSelection(desktop, editor, trace);
    const QImage picture = desktop.screenshot();
    if (!picture.save(screenshotPath))
        return fail("the screenshot could not be saved");
    if (!first)
        return fail("no translation was painted; see the screenshot");

    QString source;
    QString translation;
    DesktopSession::eventually(
        [&] {
            QStringList texts;
            for (const auto &node : AccessibleTree::read(program->processId())) {
                if (!node.text.isEmpty() && node.role != QLatin1String("label"))
                    texts << node.text;
            }
            source = texts.value(0);
            translation = texts.value(1);
            return !translation.isEmpty();
        },
        std::chrono::seconds(10));

    desktop.pressKey(XK_Escape);
    const bool isFocusBack = DesktopSession::eventually([&] { return desktop.activeWindow() == editor; },
                                                        std::chrono::seconds(10));
    const auto again = translateSelection(desktop, editor, trace);

    std::printf("captured text:      %s\n", qPrintable(source));
    std::printf("strategy:           %s\n", strategyName(first->source));
    std::printf("translation:        %s\n", qPrintable(translation));
    std::printf("first key press:    panel painted after %.1f ms, text after %.1f ms\n",
                first->panelMilliseconds, first->textMilliseconds);
    if (again)
        std::printf("second key press:   panel painted after %.1f ms, text after %.1f ms\n",
                    again->panelMilliseconds, again->textMilliseconds);
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
    parser.process(app);
    return demonstrate(QFileInfo(parser.value(QStringLiteral("tovi"))).absoluteFilePath(),
                       QFileInfo(parser.value(QStringLiteral("screenshot"))).absoluteFilePath());
}
