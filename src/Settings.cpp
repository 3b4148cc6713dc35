// SPDX-License-Identifier: MIT
#include "Settings.h"

#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/LoginItem.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "ProviderKeys.h"

namespace tovi {

const QString Settings::hotKeysChangedNotification = QStringLiteral("com.brevoll.tovi.hotKeysChanged");

Settings &Settings::shared()
{
    return Platform::current().shared<Settings>();
}

Settings::Settings()
    : m_postHotKeysChanged([] { Platform::current().notificationCenter().post(hotKeysChangedNotification); })
{
    launchAtLogin.load(Platform::current().loginItem().status() == LoginItem::Status::Enabled);
    showLoginItemStatus();
    loadProviders();
}

Settings::~Settings() = default;

void Settings::resetHotKeys()
{
    captureHotKey = defaultCaptureHotKey;
    ocrHotKey = defaultOCRHotKey;
    inputHotKey = defaultInputHotKey;
}

void Settings::applyAppearance()
{
    auto mode = Application::Appearance::System;
    if (appearance.get() == AppearanceMode::light)
        mode = Application::Appearance::Light;
    else if (appearance.get() == AppearanceMode::dark)
        mode = Application::Appearance::Dark;
    Platform::current().application().setAppearance(mode);
}

void Settings::updateLaunchAtLogin()
{
    if (m_isSyncingLaunchAtLogin)
        return;
    LoginItem &item = Platform::current().loginItem();
    if ((item.status() == LoginItem::Status::Enabled) != launchAtLogin) {
        const auto error = launchAtLogin ? item.registerItem() : item.unregisterItem();
        if (error) {
            launchAtLoginMessage =
                Localization::shared().t(Str::loginItemFailed) + QStringLiteral(" · ") + *error;
            m_isSyncingLaunchAtLogin = true;
            launchAtLogin = item.status() == LoginItem::Status::Enabled;
            m_isSyncingLaunchAtLogin = false;
            return;
        }
    }
    showLoginItemStatus();
}

void Settings::showLoginItemStatus()
{
    std::optional<QString> message;
    switch (Platform::current().loginItem().status()) {
    case LoginItem::Status::NotFound:
        message = Localization::shared().t(Str::loginItemNotFound);
        break;
    case LoginItem::Status::RequiresApproval:
        message = Localization::shared().t(Str::loginItemRequiresApproval);
        break;
    case LoginItem::Status::NotRegistered:
    case LoginItem::Status::Enabled:
        break;
    }
    launchAtLoginMessage = message;
}

} // namespace tovi
