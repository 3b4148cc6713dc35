// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "Platform/Platform.h"

namespace tovi {

/// A Linux desktop on an X11 display server. Made after the application object, with the files of the user's
/// configuration and data folders. Main thread.
class X11Platform final : public Platform
{
public:
    /// Whether a display server answers; needs no application object.
    static bool canConnect();
    /// To be called before the application object is made.
    static void prepareEnvironment();

    X11Platform();
    ~X11Platform() override;

    Accessibility &accessibility() override;
    Application &application() override;
    Clock &clock() override;
    EventMonitors &eventMonitors() override;
    HotKeyCenter &hotKeyCenter() override;
    Keyboard &keyboard() override;
    LoginItem &loginItem() override;
    NotificationCenter &notificationCenter() override;
    PanelHost &panelHost() override;
    Pasteboard &pasteboard() override;
    ScreenCapture &screenCapture() override;
    ScriptRunner &scriptRunner() override;
    SecretStore &secretStore() override;
    SpeechSynthesizer &speechSynthesizer() override;
    SystemLog &systemLog() override;
    TextRecognizer &textRecognizer() override;
    TranslationFramework &translationFramework() override;
    URLLoading &urlLoading() override;
    UserDefaults &userDefaults() override;
    Workspace &workspace() override;

private:
    struct Services;
    std::unique_ptr<Services> m_services;
};

} // namespace tovi
