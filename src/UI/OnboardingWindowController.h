// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QString>

#include "Platform/Subscription.h"

class QWidget;

namespace tovi {

class RegularWindow;

/// The welcome window. It has been seen to the end once it was closed, by whatever way. Main thread.
class OnboardingWindowController
{
public:
    static OnboardingWindowController &shared();
    OnboardingWindowController();
    ~OnboardingWindowController();
    OnboardingWindowController(const OnboardingWindowController &) = delete;

    /// In the user defaults: true once it need not be shown any more.
    static const QString completedKey;

    void show();
    /// None while it is closed.
    RegularWindow *window() const { return m_window.get(); }

private:
    void finish();
    void windowWillClose();
    void makeContent();

    struct DeleteLater
    {
        void operator()(QWidget *window) const;
    };
    std::unique_ptr<RegularWindow, DeleteLater> m_window;
    Subscription m_languageObserver;
};

} // namespace tovi
