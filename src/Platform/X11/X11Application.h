// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include <QPointer>
#include <QWidget>

#include "Platform/Linux/LinuxApplication.h"
#include "Platform/X11/X11StatusBar.h"

namespace tovi {

class X11PanelHost;

/// This program among the others of an X11 desktop: what it hides, and where its windows are listed. The
/// window manager does it. Main thread.
class X11Application final : public QObject, public LinuxApplication
{
public:
    X11Application();

    /// Whose panels are hidden, too; it lives until the program ends.
    void setPanelHost(X11PanelHost &host) { m_panelHost = &host; }

    void setActivationPolicy(ActivationPolicy policy) override;
    void hide() override;
    void hideOtherApplications() override;
    void unhideAllApplications() override;
    StatusBar statusBar() override;
    Subscription watchStatusBar(std::function<void()> changed) override;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    /// Keeps the window of ours that is active in front.
    void unhide();

    ActivationPolicy m_policy = ActivationPolicy::Accessory;
    X11PanelHost *m_panelHost = nullptr;
    X11StatusBar m_statusBar;
    Subscription m_preference;
    Subject<> m_statusBarChanged;
    std::vector<QPointer<QWidget>> m_hiddenWindows;
    std::vector<xcb_window_t> m_hiddenOthers;
};

} // namespace tovi
