// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Platform/Application.h"

namespace tovi {

class DesktopAppearance;

/// This program on a Linux desktop. Main thread.
class LinuxApplication final : public Application
{
public:
    LinuxApplication();
    ~LinuxApplication() override;

    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    ActivationPolicy activationPolicy() const { return m_policy; }
    /// Light and dark are palettes of our own; with System the desktop's colour preference is followed live.
    void setAppearance(Appearance appearance) override;
    QStringList preferredLanguages() const override;
    QStringList arguments() const override;
    void beep() override;
    void terminate() override;

private:
    void applyPalette();

    ActivationPolicy m_policy = ActivationPolicy::Accessory;
    Appearance m_appearance = Appearance::System;
    std::unique_ptr<DesktopAppearance> m_desktop; // only while it is followed
};

} // namespace tovi
