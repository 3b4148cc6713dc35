// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QList>
#include <QString>
#include <QUuid>
#include <qcorotask.h>

#include "HotKey.h"
#include "ProviderConfig.h"
#include "Stored.h"
#include "TargetLanguage.h"

namespace tovi {

class ProviderKeys;

namespace WindowPosition {
inline const QString followMouse = QStringLiteral("followMouse");
inline const QString center = QStringLiteral("center");
} // namespace WindowPosition

namespace AppearanceMode {
inline const QString system = QStringLiteral("system");
inline const QString light = QStringLiteral("light");
inline const QString dark = QStringLiteral("dark");
} // namespace AppearanceMode

/// Every user preference, written through to the user defaults at each assignment. A field reads like the
/// value it holds. Main thread only.
class Settings : public Observable
{
public:
    static Settings &shared();
    Settings();
    ~Settings();

    static const QString hotKeysChangedNotification; ///< "com.brevoll.tovi.hotKeysChanged"
    static constexpr HotKey defaultCaptureHotKey{2, HotKey::option};
    static constexpr HotKey defaultOCRHotKey{1, HotKey::option};
    static constexpr HotKey defaultInputHotKey{17, HotKey::option};

private:
    using Key = QLatin1String;
    const std::function<void()> m_postHotKeysChanged;

public:
    // The table of settings: type, key in the user defaults, default, and what else an assignment does.
    // Texts are stored as they are, known or not; numbers are not clamped: consumers do both.
    // clang-format off
    Stored<QString> targetLanguage    {this, Key("targetLanguage"), QStringLiteral("zh-CN")};
    Stored<QString> sourceLanguage    {this, Key("sourceLanguage"), QStringLiteral("auto")}; ///< or a code
    Stored<bool> enableDoubleCopy     {this, Key("enableDoubleCopy"), true};
    Stored<HotKey> captureHotKey      {this, Key("captureHotKey"), defaultCaptureHotKey, m_postHotKeysChanged};
    Stored<HotKey> ocrHotKey          {this, Key("ocrHotKey"), defaultOCRHotKey, m_postHotKeysChanged};
    Stored<HotKey> inputHotKey        {this, Key("inputHotKey"), defaultInputHotKey, m_postHotKeysChanged};
    Stored<bool> enableDictionary     {this, Key("enableDictionary"), true};
    Stored<double> resultPanelWidth   {this, Key("resultPanelWidth"), 380.0}; ///< points
    Stored<double> resultFontSize     {this, Key("resultFontSize"), 15.0};    ///< points
    Stored<QString> windowPosition    {this, Key("windowPosition"), WindowPosition::followMouse};
    Stored<QString> appearance        {this, Key("appearance"), AppearanceMode::system, [this] { applyAppearance(); }};
    Stored<bool> browserScriptEnabled {this, Key("browserScriptEnabled"), true};
    Stored<bool> clipboardFallback    {this, Key("clipboardFallback"), true};
    Stored<bool> preferMenuBarCopy    {this, Key("preferMenuBarCopy"), true};
    Stored<bool> restoreClipboard     {this, Key("restoreClipboard"), true};
    Stored<bool> ocrEnabled           {this, Key("ocrEnabled"), true};
    Stored<bool> ocrRegionSelection   {this, Key("ocrRegionSelection"), true};
    Stored<double> requestTimeout     {this, Key("requestTimeout"), 20.0}; ///< seconds
    Stored<QUuid> currentProviderID   {this, Key("currentProviderID"), QUuid()};
    // clang-format on

    /// The engines, in the user's order; stored 0.4 s after the last assignment. Their API keys arrive a
    /// little after the start (announced): await keyLoaded() before using one.
    Published<QList<ProviderConfig>> providers{this, {}, [this](const auto &) { providersChanged(); }};
    /// Not stored: the system's list of login items knows.
    Published<bool> launchAtLogin{this, false, [this](bool) { updateLaunchAtLogin(); }};
    Published<std::optional<QString>> launchAtLoginMessage{this, {}};

    void resetHotKeys();
    void applyAppearance();
    void updateLaunchAtLogin();

    /// The chosen engine, else the first, else a Google engine that is in no list.
    ProviderConfig currentProvider() const;
    std::optional<ProviderConfig> provider(const QUuid &id) const;
    void addProvider(const ProviderConfig &config);
    /// Removes the engine and its API key, unless it is built in.
    void removeProvider(const QUuid &id);
    void resetSystemPrompt(const QUuid &id);

    /// Finishes when the API key of the engine has been read from the key store (or could not be).
    QCoro::Task<> keyLoaded(QUuid id);
    /// Stores a pending engine list and its keys now. Blocks, bounded: for quitting.
    void flush();

private:
    void loadProviders();
    void migrateLegacyProviders();
    void providersChanged();
    void persistProviders(const QList<ProviderConfig> &list);
    void showLoginItemStatus();

    bool m_isSyncingLaunchAtLogin = false;
    bool m_isSavePending = false;
    Subscription m_providersSave;
    std::unique_ptr<ProviderKeys> m_keys;
};

} // namespace tovi
