// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QPointer>
#include <QSize>

#include "Platform/Subscription.h"
#include "UI/SettingsPane.h"

class QWidget;

namespace tovi {

class RegularWindow;
class SettingsToolbar;

/// Makes the settings window when it is asked for, and forgets it when it closes. Main thread.
class SettingsWindowController
{
public:
    static SettingsWindowController &shared();
    SettingsWindowController();
    ~SettingsWindowController();
    SettingsWindowController(const SettingsWindowController &) = delete;

    static constexpr QSize contentSize{560, 520}; ///< at first, in points
    static constexpr QSize minimumSize{520, 460};

    /// Opens the window on the pane that was selected last, or brings it forward.
    void show();
    void select(SettingsPane pane);

    SettingsPane selectedPane() const { return m_selectedPane; }
    /// None while it is closed.
    RegularWindow *window() const { return m_window.get(); }

private:
    void makeWindow();
    void toolbarItemClicked(const QString &identifier);
    void showPane();
    void windowWillClose();
    void languageChanged();

    struct DeleteLater
    {
        void operator()(QWidget *window) const;
    };
    std::unique_ptr<RegularWindow, DeleteLater> m_window;
    SettingsToolbar *m_toolbar = nullptr; // while there is a window, as the next two
    QWidget *m_hostingView = nullptr;
    QPointer<QWidget> m_pane;
    SettingsPane m_selectedPane = SettingsPane::general;
    Subscription m_languageObserver;
};

} // namespace tovi
