// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

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

    virtual ~Application() = default;

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual void setAppearance(Appearance appearance) = 0;
    /// The user's preferred interface languages, most wanted first, as BCP 47 codes ("zh-Hant-TW").
    virtual QStringList preferredLanguages() const = 0;
    virtual QStringList arguments() const = 0;
    /// The system's short alert sound.
    virtual void beep() = 0;
    virtual void terminate() = 0;
};

} // namespace tovi
