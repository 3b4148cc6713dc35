// SPDX-License-Identifier: MIT
#include <filesystem>

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include "Platform/Keyboard.h"
#include "Platform/Linux/DesktopEntries.h"
#include "Platform/Linux/LinuxApplication.h"
#include "Platform/Linux/LinuxClock.h"
#include "Platform/Linux/LocaleNames.h"
#include "Platform/Linux/TerminalEmulators.h"
#include "Platform/Linux/VirtualKeyCodes.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

TEST(VirtualKeyCodes, NameEveryPositionOnce)
{
    QSet<quint32> codes, positions, keysyms;
    for (const VirtualKey &key : VirtualKeyCodes::all()) {
        codes << key.keyCode;
        positions << key.evdev;
        keysyms << key.keysym;
        EXPECT_EQ(VirtualKeyCodes::fromXKeycode(*VirtualKeyCodes::xKeycode(key.keyCode)), key.keyCode);
    }
    EXPECT_EQ(codes.size(), 73);
    EXPECT_EQ(positions.size(), 73);
    EXPECT_EQ(keysyms.size(), 73);
    // Key codes of X servers: D, 0, Return, Backspace, Delete, F12, Left.
    const std::pair<quint32, quint32> known[] = {{2, 40},    {29, 19},  {36, 36},  {51, 22},
                                                 {117, 119}, {111, 96}, {123, 113}};
    for (const auto &[code, keycode] : known)
        EXPECT_EQ(VirtualKeyCodes::xKeycode(code), keycode) << code;
    EXPECT_FALSE(VirtualKeyCodes::xKeycode(105));
    EXPECT_FALSE(VirtualKeyCodes::fromXKeycode(50)) << "a modifier has no code";
}

struct Entries : testing::Test
{
    void write(const QString &path, const QByteArray &body)
    {
        QDir(dir.path()).mkpath(QFileInfo(path).path());
        QFile file(dir.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + body);
    }
    QString idFor(const ApplicationHints &hints)
    {
        const auto entry = entries.find(hints);
        return entry ? entry->id : QStringLiteral("none");
    }
    QTemporaryDir dir;
    DesktopEntries entries{{dir.filePath(QStringLiteral("user")), dir.filePath(QStringLiteral("system")),
                            dir.filePath(QStringLiteral("missing"))},
                           {QStringLiteral("de_AT"), QStringLiteral("de")}};
};

TEST_F(Entries, MatchByTheMostSpecificName)
{
    using S = QString;
    write(S(QStringLiteral("system/org.example.Editor.desktop")),
          "Name=Editor\nName[fr]=F\nName[de]=Schreiber\nExec=/usr/bin/env A=1 example-editor %U\n"
          "[Desktop Action new]\nName=New window\nExec=other\n");
    write(QStringLiteral("system/browser.desktop"),
          "Name=Browser\nExec=browser %u\nStartupWMClass=Browser\n");
    write(QStringLiteral("system/browser-app.desktop"),
          "Name=Mail\nExec=browser --app=mail\nStartupWMClass=crx_mail\n");
    write(QStringLiteral("system/kde/term.desktop"),
          "Name[de]=Konsole\nName=Terminal\\sone\nExec=\"/opt/my term/term\"\n"
          "Categories=System;TerminalEmulator;\n");
    write(QStringLiteral("system/a-helper.desktop"), "Name=Helper\nExec=browser\nNoDisplay=true\n");
    write(QStringLiteral("system/gone.desktop"), "Name=Gone\nExec=gone\n");
    write(QStringLiteral("user/gone.desktop"), "Name=Gone\nExec=gone\nHidden=true\n");
    write(QStringLiteral("system/noise.desktop"), QByteArray("\xff\xfe\0=\n[\n=x\nName", 15));

    const struct
    {
        const char *application, *windowClass, *instance, *process, *id;
    } cases[] = {
        {"org.example.Editor", "Browser", "browser", "", "org.example.Editor"},
        {"", "Browser", "crx_mail", "browser", "browser-app"},
        {"", "BROWSER", "x", "", "browser"},
        {"", "org.example.editor", "", "", "org.example.Editor"},
        {"", "Editor", "editor", "", "org.example.Editor"},
        {"", "Example-editor", "example-editor", "", "org.example.Editor"},
        {"", "X", "x", "term", "kde-term"},
        {"unknown", "Gone", "gone", "gone", "none"},
        {"", "", "", "", "none"},
    };
    for (const auto &c : cases) {
        const ApplicationHints hints{QString::fromLatin1(c.application), QString::fromLatin1(c.windowClass),
                                     QString::fromLatin1(c.instance), QString::fromLatin1(c.process)};
        EXPECT_EQ(idFor(hints), QString::fromLatin1(c.id)) << c.windowClass << " " << c.process;
    }
    EXPECT_EQ(entries.byId(QStringLiteral("org.example.Editor"))->name, QStringLiteral("Schreiber"));
    const auto terminal = entries.byId(QStringLiteral("kde-term"));
    EXPECT_EQ(terminal->name, QStringLiteral("Konsole"));
    EXPECT_TRUE(terminal->categories.contains(QLatin1String("TerminalEmulator")));

    // An application that is installed while we run, in a directory that was not there.
    write(QStringLiteral("missing/late.desktop"), "Name=Late\nExec=late\n");
    EXPECT_TRUE(waitUntil([&] { return entries.byId(QStringLiteral("late")).has_value(); }));
    QFile::remove(dir.filePath(QStringLiteral("missing/late.desktop")));
    // File systems count time in ticks, and a tick may have seen both changes.
    using std::filesystem::file_time_type;
    std::filesystem::last_write_time(dir.filePath(QStringLiteral("missing")).toStdString(),
                                     file_time_type::clock::now() + std::chrono::seconds(1));
    EXPECT_TRUE(waitUntil([&] { return !entries.byId(QStringLiteral("late")).has_value(); }));
}

TEST(TerminalEmulators, CopyWithTheirOwnKeyOrNone)
{
    constexpr quint32 command = ModifierFlag::command;
    const DesktopEntry unknown{
        QStringLiteral("org.example.Shell"), {}, {}, {}, {QStringLiteral("TerminalEmulator")}};
    const DesktopEntry editor{QStringLiteral("editor"), {}, {}, {}, {QStringLiteral("Utility")}};
    const auto named = [](const char *application, const char *windowClass, const char *instance,
                          const char *process) {
        return ApplicationHints{QLatin1String(application), QLatin1String(windowClass),
                                QLatin1String(instance), QLatin1String(process)};
    };
    const struct
    {
        ApplicationHints hints;
        std::optional<DesktopEntry> entry;
        std::optional<quint32> expected;
    } cases[] = {
        {named("", "Mousepad", "mousepad", "mousepad"), editor, command},
        {{}, std::nullopt, command},
        {named("org.gnome.Terminal", "Gnome-terminal", "", "gnome-terminal-"), std::nullopt,
         command | ModifierFlag::shift},
        {named("", "Konsole", "konsole", "konsole"), std::nullopt, command | ModifierFlag::shift},
        {named("", "URxvt", "urxvt", "urxvt"), std::nullopt, command | ModifierFlag::option},
        {named("", "XTerm", "xterm", "xterm"), std::nullopt, std::nullopt},
        {named("", "mutt", "mutt", "xterm"), unknown, std::nullopt}, // named after what runs in it
        {named("", "Shell", "shell", "shell"), unknown, command | ModifierFlag::shift},
    };
    for (const auto &c : cases)
        EXPECT_EQ(copyModifiers(c.hints, c.entry), c.expected) << c.hints.windowClass.toStdString();
}

/// Without a display server.
struct HeadlessApplication final : LinuxApplication
{
    void setActivationPolicy(ActivationPolicy) override {}
    void hide() override {}
    void hideOtherApplications() override {}
    void unhideAllApplications() override {}
    StatusBar statusBar() override { return {}; }
    Subscription watchStatusBar(std::function<void()>) override { return {}; }
};

TEST(LinuxApplication, PreferredLanguagesComeFromTheEnvironment)
{
    struct Case
    {
        QByteArray language, all, messages, lang;
        QStringList expected;
    };
    const auto list = [](const char *codes) { return QString::fromLatin1(codes).split(QLatin1Char(' ')); };
    const Case cases[] = {
        {"", "", "", "zh_TW.UTF-8", list("zh-Hant-TW")},
        {"zh_HK:de_AT:de", "C", "", "fr_FR", list("zh-Hant-HK de-AT de en")},
        {"", "", "zh_CN", "ja_JP.UTF-8", list("zh-Hans-CN")},
        {"", "POSIX", "de_DE", "de_DE", list("en")},
        {"", "C.UTF-8", "", "", list("en")},
        {"", "", "", "", list("en")},
        {"", "", "", "sr_RS.UTF-8@latin", list("sr-Latn-RS")},
        {"../../etc", "", "", "ca_ES@valencia", list("en ca-ES")},
    };
    const char *names[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
    QList<QByteArray> kept;
    for (const char *name : names)
        kept << qgetenv(name);
    HeadlessApplication application;
    for (const Case &c : cases) {
        const QByteArray values[] = {c.language, c.all, c.messages, c.lang};
        for (int i = 0; i < 4; ++i)
            qputenv(names[i], values[i]);
        EXPECT_EQ(application.preferredLanguages(), c.expected) << c.lang.constData();
    }
    qputenv("LANGUAGE", "de_AT:fr");
    EXPECT_EQ(DesktopEntries::messageLanguages().first(3), list("de_AT de fr"));
    for (int i = 0; i < 4; ++i)
        qputenv(names[i], kept[i]);
}

TEST(LinuxClock, TimersRunOnceAndEndWithTheirSubscription)
{
    using namespace std::chrono_literals;
    LinuxClock clock;
    QList<int> ran;
    const auto start = clock.now();
    Subscription self = clock.after(5ms, [&] {
        self.reset(); // its own, from inside
        ran << 1;
    });
    Subscription ended = clock.after(1ms, [&] { ran << 2; });
    ended.reset();
    Subscription farAway = clock.after(Clock::Duration::max(), [&] { ran << 3; });
    clock.afterDetached(-1s, [&] { ran << 0; });
    EXPECT_TRUE(waitUntil([&] { return ran.size() >= 2; }));
    EXPECT_EQ(ran, (QList<int>{0, 1}));
    EXPECT_GE(clock.now() - start, 5ms);
}

} // namespace
} // namespace tovi
