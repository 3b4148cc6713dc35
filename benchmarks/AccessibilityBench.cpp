// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <X11/keysym.h>

#include "Bench.h"
#include "ChromiumArguments.h"
#include "DesktopSession.h"
#include "Platform/DispatchQueue.h"
#include "Platform/Linux/AtspiAccessibility.h"
#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/XcbPrimarySelection.h"
#include "Support/CapturedSelection.h"

namespace tovi::bench {

namespace {

constexpr int rounds = 30;
const QString sample = QStringLiteral("The weather has been unusually warm this week.");

struct Target
{
    const char *name;
    QString program;
    QStringList arguments;
    QString title;
    bool isTerminal = false;
};

struct Figures
{
    Samples focus, text, bounds, whole;
};

Figures measure(AtspiAccessibility &accessibility, DispatchQueue &queue)
{
    Figures figures;
    for (int i = 0; i < rounds; ++i) {
        auto future = queue.run([&] { return captureSelection(accessibility.systemWideElement()); });
        DesktopSession::eventually([&] { return future.isFinished(); });
        const Captured captured = future.result();
        figures.focus.add(captured.focusMilliseconds);
        figures.text.add(captured.textMilliseconds);
        figures.bounds.add(captured.boundsMilliseconds);
        figures.whole.add(captured.focusMilliseconds + captured.textMilliseconds +
                          captured.boundsMilliseconds);
    }
    return figures;
}

QList<Target> targets(const DesktopSession &desktop)
{
    const QString file = desktop.writeFile(QStringLiteral("sample.txt"), sample);
    const QString page =
        desktop.writeFile(QStringLiteral("sample.html"),
                          QStringLiteral("<title>sample page</title><p>%1</p><p>%1</p>").arg(sample));
    const QString profile = desktop.home() + QStringLiteral("/profile");
    QDir().mkpath(profile);
    const QString title = QStringLiteral("sample");
    return {
        {"GTK editor (mousepad)",
         QStringLiteral("mousepad"),
         {QStringLiteral("--disable-server"), file},
         title},
        {"Qt editor (featherpad)",
         QStringLiteral("featherpad"),
         {QStringLiteral("--standalone"), file},
         title},
        {"Firefox, page",
         QStringLiteral("firefox-esr"),
         {QStringLiteral("--no-remote"), QStringLiteral("--profile"), profile, page},
         QStringLiteral("Firefox")},
        {"Chromium, page", QStringLiteral("chromium"),
         chromiumArguments(desktop, {QStringLiteral("--force-renderer-accessibility"), page}),
         QStringLiteral("Chromium")},
        {"terminal (xterm), primary selection",
         QStringLiteral("xterm"),
         {QStringLiteral("-T"), title, QStringLiteral("-e"), QStringLiteral("cat %1; sleep 600").arg(file)},
         title,
         true}};
}

} // namespace

double benchAccessibility(DesktopSession &desktop)
{
    printHeading("Accessibility query: focused element, selected text, bounds (ms)");
    AtspiAccessibility accessibility(std::make_shared<FrontWindow>(),
                                     std::make_shared<XcbPrimarySelection>());
    DispatchQueue queue(QStringLiteral("capture"));
    DesktopSession::eventually([&] {
        accessibility.requestTrust();
        return accessibility.isProcessTrusted();
    });
    double editorMilliseconds = 0;
    for (const Target &target : targets(desktop)) {
        if (!DesktopSession::isInstalled(target.program)) {
            std::printf("  %-58s not installed\n", target.name);
            continue;
        }
        QProcess *process = desktop.start(target.program, target.arguments);
        const auto window = process ? desktop.waitForWindow(target.title) : 0;
        const QRect area = desktop.geometry(window);
        const bool isSelected =
            window && DesktopSession::eventually([&] {
                if (target.isTerminal) {
                    desktop.click(area.topLeft() + QPoint(40, 10), 3);
                } else {
                    desktop.click(area.center());
                    desktop.pressKey(XK_a, {XK_Control_L});
                }
                auto future = queue.run([&] { return captureSelection(accessibility.systemWideElement()); });
                DesktopSession::eventually([&] { return future.isFinished(); });
                return future.result().text.contains(sample);
            });
        if (isSelected) {
            const Figures figures = measure(accessibility, queue);
            printRow(QStringLiteral("%1: focused element").arg(QLatin1String(target.name)), figures.focus,
                     "ms");
            printRow(QStringLiteral("%1: selected text").arg(QLatin1String(target.name)), figures.text, "ms");
            printRow(QStringLiteral("%1: bounds").arg(QLatin1String(target.name)), figures.bounds, "ms");
            if (editorMilliseconds == 0)
                editorMilliseconds = figures.whole.median();
        } else {
            std::printf("  %-58s no selection was seen\n", target.name);
        }
        if (process)
            desktop.end(process);
    }
    return editorMilliseconds;
}

} // namespace tovi::bench
