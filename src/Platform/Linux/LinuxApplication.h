// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Platform/Application.h"

namespace tovi {

class DesktopAppearance;

/// What is the same for this program on every Linux desktop. Main thread.
class LinuxApplication : public Application
{
public:
    LinuxApplication();
    ~LinuxApplication() override;

    /// Light and dark are palettes of our own; with System the desktop's colour preference is followed live.
    void setAppearance(Appearance appearance) override;
    QStringList preferredLanguages() const override;
    QStringList arguments() const override;
    void beep() override;
    void terminate() override;

    /// Whether the desktop prefers dark; none while unknown, or where it has no preference.
    std::optional<bool> desktopPrefersDark();

protected:
    Subject<> m_desktopPreferenceChanged;

private:
    DesktopAppearance &desktop();
    void applyPalette();

    Appearance m_appearance = Appearance::System;
    std::unique_ptr<DesktopAppearance> m_desktop; // from the first question on
};

} // namespace tovi
