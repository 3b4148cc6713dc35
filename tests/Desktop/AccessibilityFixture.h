// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "DesktopSession.h"
#include "Platform/DispatchQueue.h"
#include "Platform/Linux/AtspiAccessibility.h"
#include "Support/CapturedSelection.h"

namespace tovi {

/// A desktop with the accessibility service that is tested, asked from a queue as the program does.
class AccessibilityDesktop : public testing::Test
{
protected:
    AccessibilityDesktop();
    ~AccessibilityDesktop() override;
    void SetUp() override;

    template <class Fn>
    auto onQueue(Fn work)
    {
        auto future = queue->run(std::move(work));
        DesktopSession::eventually([&] { return future.isFinished(); });
        return future.result();
    }
    /// Focused element, its selected text, its bounds: once.
    Captured capture();
    /// Waits until the focused element is one that tells its text: applications appear on the bus late.
    bool waitForAccessibleFocus();
    /// Captures until the text is the expected one, or gives up.
    Captured captureUntil(const QString &expected, std::chrono::seconds limit = DesktopSession::defaultLimit);
    /// The selected text at a point of the screen, walking up as the capturer does.
    QString textAt(QPoint position);

    /// The messaging time-out: longer than the program's, for busy machines.
    static constexpr std::chrono::seconds patience{20};
    std::unique_ptr<DesktopSession> desktop;
    std::unique_ptr<AtspiAccessibility> accessibility;
    std::unique_ptr<DispatchQueue> queue;
};

} // namespace tovi
