// SPDX-License-Identifier: MIT
#include "UI/OnboardingWindowController.h"

#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"
#include "UI/OnboardingView.h"
#include "UI/RegularWindow.h"

namespace tovi {

const QString OnboardingWindowController::completedKey = QStringLiteral("hasCompletedOnboarding");

OnboardingWindowController &OnboardingWindowController::shared()
{
    return Platform::current().shared<OnboardingWindowController>();
}

OnboardingWindowController::OnboardingWindowController()
    : m_languageObserver(Platform::current().notificationCenter().observe(
          Localization::languageChangedNotification, [this](const QVariantMap &) {
              if (m_window)
                  makeContent();
          }))
{}

OnboardingWindowController::~OnboardingWindowController()
{
    // The end of the program: there is no later turn of the main queue.
    delete m_window.release();
}

void OnboardingWindowController::DeleteLater::operator()(QWidget *window) const
{
    window->deleteLater();
}

void OnboardingWindowController::show()
{
    if (m_window) {
        m_window->makeKeyAndOrderFront();
        return;
    }
    Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Regular);
    m_window.reset(new RegularWindow(RegularWindow::Style::fixed));
    m_window->onClose = [this] { windowWillClose(); };
    makeContent();
    m_window->makeKeyAndOrderFront();
}

void OnboardingWindowController::makeContent()
{
    m_window->setWindowTitle(Localization::shared().t(Str::onboardingTitle));
    auto *view = new OnboardingView([this] { finish(); });
    m_window->setCentralWidget(view); // the old one goes by itself
    // In this turn: a window with nothing in it is taken from the desktop, which then shows and activates it
    // as a new one.
    view->show();
    view->setFocus(Qt::OtherFocusReason);
}

void OnboardingWindowController::finish()
{
    Platform::current().userDefaults().set(completedKey, true);
    Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Accessory);
    if (m_window)
        m_window->close();
}

void OnboardingWindowController::windowWillClose()
{
    Platform::current().userDefaults().set(completedKey, true);
    m_window.reset();
    Platform::current().application().setActivationPolicy(Application::ActivationPolicy::Accessory);
}

} // namespace tovi
