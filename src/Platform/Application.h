// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>

#include "Platform/Subscription.h"

namespace tovi {

/// This program as the desktop sees it. Main thread.
class Application
{
public:
    enum class ActivationPolicy {
        Accessory, ///< no entry in the taskbar or task switcher
        Regular,
    };
    enum class Appearance {
        System,
        Light,
        Dark,
    };

    /// Where the desktop shows status items.
    struct StatusBar
    {
        bool isThere = false;
        std::optional<bool> isDark; ///< its background; none where nobody tells
        bool operator==(const StatusBar &) const = default;
    };

    virtual ~Application() = default;

    /// Decides about the regular windows that are shown from now on; Regular also takes those that are shown
    /// already, while Accessory leaves them reachable.
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual void setAppearance(Appearance appearance) = 0;
    /// The user's preferred interface languages, most wanted first, as BCP 47 codes ("zh-Hant-TW").
    virtual QStringList preferredLanguages() const = 0;
    virtual QStringList arguments() const = 0;
    /// The system's short alert sound.
    virtual void beep() = 0;
    virtual void terminate() = 0;

    /// Hides the program's own windows: panels until one is shown or a window is activated, windows until one
    /// of them is.
    virtual void hide() = 0;
    virtual void hideOtherApplications() = 0;
    /// Brings back what these two have hidden, and nothing else.
    virtual void unhideAllApplications() = 0;

    virtual StatusBar statusBar() = 0;
    /// Runs after each change of it.
    [[nodiscard]] virtual Subscription watchStatusBar(std::function<void()> changed) = 0;
};

} // namespace tovi
