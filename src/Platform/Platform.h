// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <typeindex>
#include <vector>

namespace tovi {

class Accessibility;
class Application;
class Clock;
class EventMonitors;
class HotKeyCenter;
class Keyboard;
class LoginItem;
class NotificationCenter;
class PanelHost;
class Pasteboard;
class ScreenCapture;
class ScriptRunner;
class SecretStore;
class SpeechSynthesizer;
class SystemLog;
class TextRecognizer;
class TranslationFramework;
class URLLoading;
class UserDefaults;
class Workspace;

/// What the program needs of a desktop. The entry point and tests make exactly one; it owns the services and
/// the program's shared instances, which end (newest first) before the services do.
class Platform
{
public:
    Platform();
    virtual ~Platform();
    Platform(const Platform &) = delete;

    static Platform &current();

    virtual Accessibility &accessibility() = 0;
    virtual Application &application() = 0;
    virtual Clock &clock() = 0;
    virtual EventMonitors &eventMonitors() = 0;
    virtual HotKeyCenter &hotKeyCenter() = 0;
    virtual Keyboard &keyboard() = 0;
    virtual LoginItem &loginItem() = 0;
    virtual NotificationCenter &notificationCenter() = 0;
    virtual PanelHost &panelHost() = 0;
    virtual Pasteboard &pasteboard() = 0;
    virtual ScreenCapture &screenCapture() = 0;
    virtual ScriptRunner &scriptRunner() = 0;
    virtual SecretStore &secretStore() = 0;
    virtual SpeechSynthesizer &speechSynthesizer() = 0;
    virtual SystemLog &systemLog() = 0;
    virtual TextRecognizer &textRecognizer() = 0;
    virtual TranslationFramework &translationFramework() = 0;
    virtual URLLoading &urlLoading() = 0;
    virtual UserDefaults &userDefaults() = 0;
    virtual Workspace &workspace() = 0;

    /// The one instance of T, made on first use. Any thread.
    template <class T>
    T &shared()
    {
        const std::scoped_lock lock(m_sharedMutex);
        for (const auto &[type, instance] : m_shared) {
            if (type == typeid(T))
                return *static_cast<T *>(instance.get());
        }
        auto made = std::make_shared<T>();
        m_shared.emplace_back(typeid(T), made);
        return *made;
    }

protected:
    /// Backends call it first in their destructors, while their services still live.
    void endSharedInstances();

private:
    std::recursive_mutex m_sharedMutex;
    std::vector<std::pair<std::type_index, std::shared_ptr<void>>> m_shared;
};

} // namespace tovi
