// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <mutex>

#include <QJsonObject>
#include <QStringList>

#include "Platform/Accessibility.h"
#include "Platform/Application.h"
#include "Platform/EventMonitors.h"
#include "Platform/HotKeyCenter.h"
#include "Platform/LoginItem.h"
#include "Platform/NotificationCenter.h"
#include "Platform/PanelHost.h"
#include "Platform/Pasteboard.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/ScriptRunner.h"
#include "Platform/SecretStore.h"
#include "Platform/SystemLog.h"
#include "Platform/URLSession.h"
#include "Platform/UserDefaults.h"
#include "Platform/Workspace.h"
#include "Support/TestAccessibility.h"
#include "Support/TestClock.h"
#include "Support/TestPanelHost.h"
#include "Support/TestPasteboard.h"
#include "Support/TestSecretStore.h"
#include "Support/TestSpeechSynthesizer.h"
#include "Support/TestTextRecognizer.h"
#include "Support/TestTranslationFramework.h"

namespace tovi {

struct TestApplication final : Application
{
    void setActivationPolicy(ActivationPolicy value) override { policy = value; }
    void setAppearance(Appearance value) override { appearances << static_cast<int>(value); }
    QStringList preferredLanguages() const override { return languages; }
    QStringList arguments() const override { return argumentList; }
    void beep() override { ++beeps; }
    void terminate() override { ++terminations; }
    void hide() override { requests << QStringLiteral("hide"); }
    void hideOtherApplications() override { requests << QStringLiteral("hide others"); }
    void unhideAllApplications() override { requests << QStringLiteral("show all"); }
    StatusBar statusBar() override { return bar; }
    Subscription watchStatusBar(std::function<void()> changed) override
    {
        return barChanged.subscribe(std::move(changed));
    }

    std::optional<ActivationPolicy> policy;
    QList<int> appearances;
    QStringList languages{QStringLiteral("en-US")};
    QStringList argumentList{QStringLiteral("tovi")};
    int beeps = 0;
    int terminations = 0;
    QStringList requests;
    StatusBar bar{.isThere = true};
    Subject<> barChanged; ///< emit it after changing the bar
};

struct TestWorkspace final : Workspace
{
    std::optional<RunningApplication> frontmostApplication() override
    {
        const std::scoped_lock lock(mutex);
        return frontmost;
    }
    QList<Screen> screens() override { return screenList; }
    std::optional<Screen> mainScreen() override
    {
        return screenList.isEmpty() ? std::nullopt : std::optional(screenList.first());
    }
    std::optional<QPointF> mouseLocation() override { return mouse; }
    void open(const QString &url) override { opened << url; }

    std::mutex mutex;
    std::optional<RunningApplication> frontmost;
    QList<Screen> screenList{{QRectF(0, 0, 1440, 900), QRectF(0, 0, 1440, 870), 1.0, 1}};
    std::optional<QPointF> mouse = QPointF(700, 450);
    QStringList opened;
};

struct TestEventMonitors final : EventMonitors
{
    Subscription addGlobalMouseDownMonitor(std::function<void()> handler) override
    {
        return mouseDown.subscribe(std::move(handler));
    }
    Subscription addGlobalKeyDownMonitor(quint32 keyCode,
                                         std::function<void(const KeyEvent &)> handler) override
    {
        return keyDown.subscribe([keyCode, handler = std::move(handler)](KeyEvent event) {
            if (event.keyCode == keyCode)
                handler(event);
        });
    }
    Subscription addLocalKeyDownMonitor(std::function<bool(const KeyEvent &)> handler) override
    {
        localHandler = std::move(handler);
        return Subscription([this] { localHandler = nullptr; });
    }
    Subject<> mouseDown;       ///< emit it for a click in another application
    Subject<KeyEvent> keyDown; ///< emit it for a key in another application
    std::function<bool(const KeyEvent &)> localHandler;
};

struct TestHotKeyCenter final : HotKeyCenter
{
    struct Keys
    {
        quint32 keyCode;
        quint32 modifiers;
        bool operator==(const Keys &) const = default;
    };
    void setHandler(Handler value) override { handler = std::move(value); }
    Registration registerHotKey(quint32 number, quint32 keyCode, quint32 modifiers) override
    {
        const Keys keys{keyCode, modifiers};
        if (takenByOthers.contains(keys))
            return Registration::Refused;
        for (const auto &[other, registeredKeys] : registered) {
            if (registeredKeys == keys)
                return Registration::Refused;
        }
        registered[number] = keys;
        return Registration::Registered;
    }
    void unregisterHotKey(quint32 number) override { registered.erase(number); }
    /// The keyboard of this desktop counts its keys from 100.
    std::optional<quint32> keyCodeAt(quint32 nativeScanCode) const override
    {
        return nativeScanCode < 100 ? std::nullopt : std::optional(nativeScanCode - 100);
    }
    /// A key press as the desktop delivers it: false when nobody registered the keys.
    bool press(quint32 keyCode, quint32 modifiers)
    {
        for (const auto &[number, keys] : registered) {
            if (keys == Keys{keyCode, modifiers}) {
                handler(number);
                return true;
            }
        }
        return false;
    }

    Handler handler;
    std::map<quint32, Keys> registered;
    QList<Keys> takenByOthers;
};

/// A screen on which everything is of one colour.
struct TestScreenCapture final : ScreenCapture
{
    bool preflightAccess() override { return allowed; }
    void requestAccess() override { ++requests; }
    QFuture<ShareableContent> shareableContent() override { return answer(ShareableContent(content)); }
    QFuture<QImage> captureImage(ContentFilter filter, StreamConfiguration configuration) override
    {
        filters << filter;
        configurations << configuration;
        QImage image(configuration.size, QImage::Format_RGB32);
        image.fill(Qt::white);
        return answer(std::move(image));
    }

    bool allowed = true;
    int requests = 0;
    ShareableContent content{.displays = {1}};
    std::optional<ScreenCaptureError> error;
    QList<ContentFilter> filters;
    QList<StreamConfiguration> configurations;

private:
    template <class T>
    QFuture<T> answer(T value) const
    {
        return error ? QtFuture::makeExceptionalFuture<T>(std::make_exception_ptr(*error))
                     : QtFuture::makeReadyFuture(std::move(value));
    }
};

struct TestScriptRunner final : ScriptRunner
{
    std::optional<QString> run(const QString &source) override
    {
        const std::scoped_lock lock(mutex);
        sources << source;
        return result;
    }
    std::mutex mutex;
    std::optional<QString> result;
    QStringList sources;
};

struct TestSystemLog final : SystemLog
{
    void write(const QString &line) override
    {
        const std::scoped_lock lock(mutex);
        lines << line;
    }
    std::mutex mutex;
    QStringList lines;
};

struct TestLoginItem final : LoginItem
{
    Status status() const override { return current; }
    std::optional<QString> registerItem() override
    {
        ++registrations;
        if (!error)
            current = afterRegistration;
        return error;
    }
    std::optional<QString> unregisterItem() override
    {
        ++unregistrations;
        if (!error)
            current = Status::NotRegistered;
        return error;
    }
    Status current = Status::NotRegistered;
    Status afterRegistration = Status::Enabled;
    std::optional<QString> error;
    int registrations = 0;
    int unregistrations = 0;
};

/// A machine without a network.
struct TestURLLoading final : URLLoading
{
    struct Task final : URLTask
    {
        template <class T>
        static QFuture<T> failed()
        {
            return QtFuture::makeExceptionalFuture<T>(
                std::make_exception_ptr(URLError(URLError::Code::notConnectedToInternet)));
        }
        QFuture<URLResponse> response() override { return failed<URLResponse>(); }
        QFuture<QByteArray> read() override { return failed<QByteArray>(); }
    };
    struct Session final : URLSession
    {
        std::unique_ptr<URLTask> start(const URLRequest &) override { return std::make_unique<Task>(); }
    };
    std::unique_ptr<URLSession> makeSession(const URLSession::Configuration &) override
    {
        return std::make_unique<Session>();
    }
};

struct TestUserDefaults final : UserDefaults
{
    QJsonValue stored(const QString &key) const override { return values.value(key); }
    void write(const QString &key, const QJsonValue &value) override
    {
        values.insert(key, value);
        writes << key;
    }
    QJsonObject values;
    QStringList writes;
};

/// A desktop that a test scripts. Services are plain members, so a test reads and changes them directly.
class TestPlatform final : public Platform
{
public:
    ~TestPlatform() override { endSharedInstances(); }

    TestAccessibility &accessibility() override { return m_accessibility; }
    TestApplication &application() override { return m_application; }
    TestClock &clock() override { return m_clock; }
    TestEventMonitors &eventMonitors() override { return m_eventMonitors; }
    TestHotKeyCenter &hotKeyCenter() override { return m_hotKeyCenter; }
    TestKeyboard &keyboard() override { return m_keyboard; }
    TestLoginItem &loginItem() override { return m_loginItem; }
    NotificationCenter &notificationCenter() override { return m_notificationCenter; }
    TestPanelHost &panelHost() override { return m_panelHost; }
    TestPasteboard &pasteboard() override { return m_pasteboard; }
    TestScreenCapture &screenCapture() override { return m_screenCapture; }
    TestScriptRunner &scriptRunner() override { return m_scriptRunner; }
    TestSecretStore &secretStore() override { return m_secretStore; }
    TestSpeechSynthesizer &speechSynthesizer() override { return m_speechSynthesizer; }
    TestSystemLog &systemLog() override { return m_systemLog; }
    TestTextRecognizer &textRecognizer() override { return m_textRecognizer; }
    TestTranslationFramework &translationFramework() override { return m_translationFramework; }
    URLLoading &urlLoading() override { return *m_urlLoading; }
    TestUserDefaults &userDefaults() override { return m_userDefaults; }
    TestWorkspace &workspace() override { return m_workspace; }

    /// Before the first request.
    void useNetwork(std::unique_ptr<URLLoading> loading) { m_urlLoading = std::move(loading); }

private:
    TestAccessibility m_accessibility;
    TestApplication m_application;
    TestClock m_clock;
    TestEventMonitors m_eventMonitors;
    TestHotKeyCenter m_hotKeyCenter;
    TestKeyboard m_keyboard;
    TestLoginItem m_loginItem;
    NotificationCenter m_notificationCenter;
    TestPanelHost m_panelHost;
    TestPasteboard m_pasteboard{m_clock};
    TestScreenCapture m_screenCapture;
    TestScriptRunner m_scriptRunner;
    TestSecretStore m_secretStore;
    TestSpeechSynthesizer m_speechSynthesizer;
    TestSystemLog m_systemLog;
    TestTextRecognizer m_textRecognizer;
    TestTranslationFramework m_translationFramework;
    std::unique_ptr<URLLoading> m_urlLoading = std::make_unique<TestURLLoading>();
    TestUserDefaults m_userDefaults;
    TestWorkspace m_workspace;
};

} // namespace tovi
