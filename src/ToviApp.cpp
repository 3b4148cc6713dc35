// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>

#include <QApplication>

#include "AppDelegate.h"
#include "Platform/Linux/SingleInstance.h"
#include "Platform/Linux/UnixSignals.h"
#include "Platform/X11/X11Platform.h"

namespace {

constexpr const char *usage = R"(Usage: tovi [OPTION]...
Translates the text that is selected in any application, when its shortcut is pressed.

  --translate-selection   translate what is selected
  --ocr                   translate a picture of text
  --input                 translate what will be typed
  --settings              open the settings
  --check-updates         look for a newer version
  --ocr-select            select a region of the screen and do nothing with it
  --version               print the version and exit
  --help                  print this and exit

While Tovi runs, a second start hands its options to the running one; without options it shows the settings.
)";

/// Answers what needs no desktop. None when the program should start.
std::optional<int> answerFromCommandLine(int argc, char **argv)
{
    constexpr const char *actions[] = {"--translate-selection", "--ocr",       "--input", "--settings",
                                       "--check-updates",       "--ocr-select"};
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--version") == 0) {
            std::puts("tovi " TOVI_VERSION);
            return 0;
        }
        if (std::strcmp(argv[i], "--help") == 0) {
            std::fputs(usage, stdout);
            return 0;
        }
        const auto isSame = [&](const char *action) { return std::strcmp(argv[i], action) == 0; };
        if (std::none_of(std::begin(actions), std::end(actions), isSame)) {
            std::fprintf(stderr, "tovi: unknown option '%s'\nTry 'tovi --help'.\n", argv[i]);
            return 2;
        }
    }
    return std::nullopt;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace tovi;
    if (const auto status = answerFromCommandLine(argc, argv))
        return *status;
    if (!X11Platform::canConnect()) {
        std::fputs("tovi: no X11 display could be opened (is DISPLAY set?)\n", stderr);
        return 1;
    }
    X11Platform::prepareEnvironment();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tovi"));
    QApplication::setApplicationVersion(QStringLiteral(TOVI_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("com.brevoll.tovi"));
    QApplication::setQuitOnLastWindowClosed(false);

    QPointer<AppDelegate> running;
    switch (SingleInstance::claim(app.arguments().mid(1), [&running](const QStringList &arguments) {
        // Whoever starts it again wants to see something of it.
        if (running)
            running->handleArguments(arguments.isEmpty() ? QStringList(QStringLiteral("--settings"))
                                                         : arguments);
    })) {
    case SingleInstance::Role::First:
        break;
    case SingleInstance::Role::HandedOver:
        return 0;
    case SingleInstance::Role::Unresponsive:
        std::fputs("tovi: Tovi is already running, but it does not answer\n", stderr);
        return 1;
    }
    quitOnUnixSignals();

    X11Platform platform;
    AppDelegate delegate;
    running = &delegate;
    delegate.applicationDidFinishLaunching();
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}
