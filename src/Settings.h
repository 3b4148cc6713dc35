// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QList>
#include <QString>
#include <QUuid>
#include <qcorotask.h>

#include "HotKey.h"
#include "Platform/Clock.h"
#include "Platform/Observable.h"
#include "ProviderConfig.h"

namespace tovi {

/// The languages that texts can be translated into, in the order of the menus.
enum class TargetLanguage { zhHans, zhHant, en, ja, ko, fr, de, es, ru };

namespace TargetLanguages {
const QList<TargetLanguage> &all();
/// The language code: "zh-CN", "en", ...
QString rawValue(TargetLanguage language);
std::optional<TargetLanguage> fromRawValue(const QString &code);
/// The English name of a code; an unknown code is returned unchanged.
QString name(const QString &code);
/// The language's own name; an unknown code is returned unchanged.
QString ownName(const QString &code);
} // namespace TargetLanguages

namespace WindowPosition {
inline const QString followMouse = QStringLiteral("followMouse");
inline const QString center = QStringLiteral("center");
} // namespace WindowPosition

namespace AppearanceMode {
inline const QString system = QStringLiteral("system");
inline const QString light = QStringLiteral("light");
inline const QString dark = QStringLiteral("dark");
} // namespace AppearanceMode

/// Every user preference, written through to the user defaults at each assignment. Main thread only.
class Settings : public Observable
{
public:
    static Settings &shared();
    Settings();
    ~Settings();

    Published<QString> targetLanguage;
    Published<QString> sourceLanguage; ///< a code or "auto"
    Published<bool> enableDoubleCopy;
    Published<HotKey> captureHotKey;
    Published<HotKey> ocrHotKey;
    Published<HotKey> inputHotKey;
    Published<bool> enableDictionary;
    Published<double> resultPanelWidth; ///< points, as stored: consumers clamp
    Published<double> resultFontSize;   ///< points, as stored: consumers clamp
    Published<QString> windowPosition;
    Published<QString> appearance;
    Published<bool> launchAtLogin;
    Published<std::optional<QString>> launchAtLoginMessage;
    Published<bool> browserScriptEnabled;
    Published<bool> clipboardFallback;
    Published<bool> preferMenuBarCopy;
    Published<bool> restoreClipboard;
    Published<bool> ocrEnabled;
    Published<bool> ocrRegionSelection;
    Published<QList<ProviderConfig>> providers;
    Published<QUuid> currentProviderID;
    Published<double> requestTimeout; ///< seconds, as stored: consumers clamp

    void resetHotKeys();
    void applyAppearance();
    void updateLaunchAtLogin();
    ProviderConfig currentProvider() const;
    std::optional<ProviderConfig> provider(const QUuid &id) const;
    void addProvider(const ProviderConfig &config);
    void removeProvider(const QUuid &id);
    void resetSystemPrompt(const QUuid &id);

    /// Finishes when the API key of the engine has been read from the key store (or could not be).
    QCoro::Task<> keyLoaded(QUuid id);
    /// Stores a pending engine list now (quitting).
    void flush();

    static const QString hotKeysChangedNotification; ///< "com.brevoll.tovi.hotKeysChanged"

private:
    class Keys;
    std::unique_ptr<Keys> m_keys;
};

} // namespace tovi
