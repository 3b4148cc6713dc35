// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include <QPointer>

#include "GlobalHotKey.h"
#include "HotKeyStatus.h"
#include "Localization.h"
#include "Platform/Accessibility.h"
#include "Platform/Application.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Trace.h"
#include "Platform/UserDefaults.h"
#include "Settings.h"
#include "UI/HotKeyRecorder.h"
#include "UI/OnboardingWindowController.h"
#include "UI/ScreenSelectionController.h"
#include "UI/SettingsWindowController.h"

/// The pictures are in a static library, which nothing else would pull in.
static void loadResources()
{
    Q_INIT_RESOURCE(tovi);
}

namespace tovi {

namespace {
constexpr std::chrono::seconds updateCheckDelay{1};
}

AppDelegate::AppDelegate()
{
    loadResources();
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    Platform &platform = Platform::current();
    platform.application().setActivationPolicy(Application::ActivationPolicy::Accessory);
    Settings::shared().applyAppearance();
    setupMainMenu();
    setupTextEditingMonitor();
    setupStatusItem();
    setupHotKeys();
    setupDoubleCopyMonitor();
    if (!platform.accessibility().isProcessTrusted())
        platform.accessibility().requestTrust();
    if (!platform.userDefaults().boolean(OnboardingWindowController::completedKey).value_or(false))
        OnboardingWindowController::shared().show();
    handleArguments(platform.application().arguments());
    Trace::mark("ready");
}

void AppDelegate::handleArguments(const QStringList &arguments)
{
    Trace::mark("arguments", {{"count", arguments.size()}});
    using Action = void (AppDelegate::*)();
    const std::pair<QString, Action> actions[] = {
        {QStringLiteral("--settings"), &AppDelegate::openSettings},
        {QStringLiteral("--translate-selection"), &AppDelegate::triggerCapture},
        {QStringLiteral("--ocr"), &AppDelegate::triggerOCR},
        {QStringLiteral("--input"), &AppDelegate::triggerInputTranslation},
    };
    for (const auto &[argument, action] : actions) {
        if (arguments.contains(argument))
            (this->*action)();
    }
    if (arguments.contains(QStringLiteral("--ocr-select")))
        ScreenSelectionController::shared().begin([](const auto &) {});
    if (arguments.contains(QStringLiteral("--check-updates")))
        Platform::current().clock().afterDetached(updateCheckDelay, [self = QPointer(this)] {
            if (self)
                self->checkForUpdates();
        });
}

void AppDelegate::applicationWillTerminate()
{
    Settings::shared().flush();
}

void AppDelegate::setupHotKeys()
{
    registerHotKeys();
    NotificationCenter &center = Platform::current().notificationCenter();
    m_observers.push_back(center.observe(Settings::hotKeysChangedNotification,
                                         [this](const QVariantMap &) { hotKeysChanged(); }));
    m_observers.push_back(
        center.observe(HotKeyRecorder::recordingChangedNotification,
                       [this](const QVariantMap &userInfo) { hotKeyRecordingChanged(userInfo); }));
    m_observers.push_back(center.observe(Localization::languageChangedNotification,
                                         [this](const QVariantMap &) { languageChanged(); }));
}

void AppDelegate::registerHotKeys()
{
    m_captureHotKey.reset();
    m_ocrHotKey.reset();
    m_inputHotKey.reset();

    struct Entry
    {
        HotKeyStatus::Slot slot;
        HotKey keys;
        std::unique_ptr<GlobalHotKey> &registration;
        void (AppDelegate::*action)();
    };
    const Settings &settings = Settings::shared();
    const Entry entries[] = {
        {HotKeyStatus::Slot::capture, settings.captureHotKey, m_captureHotKey, &AppDelegate::triggerCapture},
        {HotKeyStatus::Slot::ocr, settings.ocrHotKey, m_ocrHotKey, &AppDelegate::triggerOCR},
        {HotKeyStatus::Slot::input, settings.inputHotKey, m_inputHotKey,
         &AppDelegate::triggerInputTranslation},
    };

    QSet<HotKeyStatus::Slot> failed;
    QSet<HotKeyStatus::Slot> duplicates;
    QList<HotKey> registered;
    for (const Entry &entry : entries) {
        if (entry.keys.isEmpty())
            continue;
        for (const Entry &other : entries) {
            if (other.slot != entry.slot && other.keys == entry.keys)
                duplicates << entry.slot;
        }
        if (registered.contains(entry.keys))
            continue;
        entry.registration = GlobalHotKey::make(entry.keys.keyCode, entry.keys.modifiers,
                                                [self = QPointer(this), action = entry.action] {
                                                    if (self)
                                                        (self->*action)();
                                                });
        if (entry.registration)
            registered << entry.keys;
        else
            failed << entry.slot;
    }
    HotKeyStatus::shared().failed = failed;
    HotKeyStatus::shared().duplicates = duplicates;
}

void AppDelegate::hotKeysChanged()
{
    if (!m_hotKeysSuspended)
        registerHotKeys();
}

void AppDelegate::hotKeyRecordingChanged(const QVariantMap &userInfo)
{
    const QVariant recording = userInfo.value(QStringLiteral("recording"));
    m_hotKeysSuspended = recording.typeId() == QMetaType::Bool && recording.toBool();
    if (m_hotKeysSuspended) {
        m_captureHotKey.reset();
        m_ocrHotKey.reset();
    } else {
        registerHotKeys();
    }
}

void AppDelegate::languageChanged()
{
    if (m_statusMenu)
        rebuildMenu(m_statusMenu.get());
    if (m_statusItem)
        m_statusItem->setToolTip(Localization::shared().t(Str::aboutSubtitle));
    setupMainMenu();
}

} // namespace tovi
