// SPDX-License-Identifier: MIT
#include "Capture/AppleScriptCapturer.h"

#include <gtest/gtest.h>

#include "Support/TestPlatform.h"

namespace tovi {
namespace {

const char safari[] =
    "tell application id \"com.apple.SafariTechnologyPreview\"\n"
    "    if (count of windows) is 0 then return \"\"\n"
    "    try\n"
    "        return (do JavaScript \"window.getSelection().toString()\" in front document)\n"
    "    on error\n"
    "        return \"\"\n"
    "    end try\n"
    "end tell";
const char chromium[] =
    "tell application id \"com.microsoft.edgemac.Beta\"\n"
    "    if (count of windows) is 0 then return \"\"\n"
    "    try\n"
    "        return (execute front window's active tab javascript \"window.getSelection().toString()\")\n"
    "    on error\n"
    "        return \"\"\n"
    "    end try\n"
    "end tell";

struct AppleScriptCapturerTest : testing::Test
{
    void bringToFront(const QString &bundleIdentifier)
    {
        platform.workspace().frontmost = RunningApplication{{}, bundleIdentifier, 1};
    }
    TestPlatform platform;
    TestScriptRunner &runner = platform.scriptRunner();
};

TEST_F(AppleScriptCapturerTest, AsksEachFamilyInItsOwnWords)
{
    bringToFront(QStringLiteral("com.apple.SafariTechnologyPreview"));
    AppleScriptCapturer::selectedText();
    bringToFront(QStringLiteral("com.microsoft.edgemac.Beta"));
    AppleScriptCapturer::selectedText();
    EXPECT_EQ(runner.sources, QStringList({QString::fromLatin1(safari), QString::fromLatin1(chromium)}));
}

TEST_F(AppleScriptCapturerTest, AsksNobodyElse)
{
    runner.result = QStringLiteral(" two\nlines \n");
    EXPECT_FALSE(AppleScriptCapturer::selectedText());
    for (const char *identifier : {"", "firefox-esr", "org.chromium.chromium", "com.google.Chrome.dev"}) {
        bringToFront(QString::fromLatin1(identifier));
        EXPECT_FALSE(AppleScriptCapturer::selectedText());
    }
    EXPECT_EQ(runner.sources, QStringList());
    bringToFront(QStringLiteral("org.chromium.Chromium"));
    EXPECT_EQ(AppleScriptCapturer::selectedText(), runner.result) << "as it is";
    runner.result = QStringLiteral(" \r\n\t\u00a0");
    EXPECT_FALSE(AppleScriptCapturer::selectedText());
}

} // namespace
} // namespace tovi
