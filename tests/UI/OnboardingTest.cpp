// SPDX-License-Identifier: MIT
#include "UI/OnboardingWindowController.h"

#include <functional>

#include <gtest/gtest.h>

#include "UI/WindowFixture.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using Policy = Application::ActivationPolicy;

class OnboardingTest : public WindowTest
{
protected:
    RegularWindow *window() override { return OnboardingWindowController::shared().window(); }
    bool isCompleted()
    {
        return platform.userDefaults().boolean(OnboardingWindowController::completedKey).value_or(false);
    }
};

TEST_F(OnboardingTest, EveryWayOutCompletesIt)
{
    const std::function<void()> ways[] = {
        [&] { window()->close(); },
        [&] { button(Str::onboardingContinue)->click(); },
        [&] { press(window()->focusWidget(), Qt::Key_Return); },
    };
    for (const auto &leave : ways) {
        platform.userDefaults().values = {};
        OnboardingWindowController::shared().show();
        drainMainQueue();
        auto *first = window();
        OnboardingWindowController::shared().show();
        EXPECT_EQ(window(), first);
        EXPECT_EQ(platform.application().policy, Policy::Regular);
        EXPECT_FALSE(isCompleted());
        leave();
        EXPECT_EQ(window(), nullptr);
        EXPECT_TRUE(isCompleted());
        EXPECT_EQ(platform.application().policy, Policy::Accessory);
        drainMainQueue();
    }
}

TEST_F(OnboardingTest, WhatIsGrantedHasNoButtonsInAnyLanguage)
{
    platform.screenCapture().allowed = false;
    platform.accessibility().trusted = false; // the launch has just asked
    OnboardingWindowController::shared().show();
    EXPECT_TRUE(rowButton(Str::openSettings, Str::accessibilityPerm));
    platform.accessibility().trusted = true;
    platform.clock().advance(1s);
    for (const AppLanguage language : AppLanguages::all()) {
        Localization::shared().language = language;
        EXPECT_TRUE(window()->centralWidget()->isVisible()) << "an empty window would be shown anew";
        drainMainQueue();
        EXPECT_FALSE(rowButton(Str::openSettings, Str::accessibilityPerm));
        EXPECT_TRUE(rowButton(Str::openSettings, Str::automationPerm));
        ASSERT_TRUE(rowButton(Str::request, Str::screenPerm));
        EXPECT_EQ(cutOff(), "");
    }
    rowButton(Str::request, Str::screenPerm)->click();
    EXPECT_EQ(platform.screenCapture().requests, 1);
    platform.accessibility().trusted = false;
    button(Str::refreshStatus)->click();
    drainMainQueue();
    EXPECT_TRUE(rowButton(Str::request, Str::accessibilityPerm));
    EXPECT_EQ(cutOff(), "");
    EXPECT_EQ(countUnreachable(), 0);
}

} // namespace
} // namespace tovi
