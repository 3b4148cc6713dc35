// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1String>

/// The text keys, in their fixed order.
// clang-format off
#define TOVI_TEXT_KEYS(X) \
    X(menuCapture) \
    X(menuOCR) \
    X(menuInput) \
    X(menuSettings) \
    X(menuCheckUpdates) \
    X(menuTranslateTo) \
    X(menuDoubleCopy) \
    X(menuClipboardFallback) \
    X(menuRestoreClipboard) \
    X(menuOCRFallback) \
    X(menuDictionary) \
    X(menuAccessibilityPermission) \
    X(menuScreenPermission) \
    X(menuQuit) \
    X(menuAbout) \
    X(menuHide) \
    X(menuHideOthers) \
    X(menuShowAll) \
    X(menuEdit) \
    X(menuUndo) \
    X(menuRedo) \
    X(menuCut) \
    X(menuCopy) \
    X(menuPaste) \
    X(menuDelete) \
    X(menuSelectAll) \
    X(resultTranslating) \
    X(resultSpeakSource) \
    X(resultSpeakTranslation) \
    X(resultCopy) \
    X(resultClose) \
    X(resultPin) \
    X(resultTranslateFailed) \
    X(sourceAccessibility) \
    X(sourceBrowser) \
    X(sourceMenuBarCopy) \
    X(sourceClipboard) \
    X(sourceOCR) \
    X(sourcePasteboard) \
    X(sourceManual) \
    X(messageNeedAccessibility) \
    X(messageNoText) \
    X(ocrCapturing) \
    X(ocrRecognizing) \
    X(ocrElapsed) \
    X(ocrWaitHint) \
    X(messageTimeout) \
    X(messageOCRNoText) \
    X(messageScreenPermission) \
    X(ocrHint) \
    X(settingsWindowTitle) \
    X(paneGeneral) \
    X(paneTranslation) \
    X(paneCapture) \
    X(paneShortcuts) \
    X(panePermissions) \
    X(paneAbout) \
    X(interfaceLanguage) \
    X(systemDefault) \
    X(launchAtLogin) \
    X(targetLanguage) \
    X(sourceLanguage) \
    X(autoDetect) \
    X(dictionaryToggle) \
    X(triggerSection) \
    X(panelSection) \
    X(widthLabel) \
    X(windowPosition) \
    X(appearance) \
    X(appearanceSystem) \
    X(appearanceLight) \
    X(appearanceDark) \
    X(positionFollowMouse) \
    X(positionCenter) \
    X(fontSize) \
    X(engine) \
    X(openaiSection) \
    X(baseURL) \
    X(model) \
    X(apiKey) \
    X(temperature) \
    X(timeoutFormat) \
    X(fallbackToGoogle) \
    X(systemPrompt) \
    X(systemPromptHint) \
    X(resetDefault) \
    X(googleSection) \
    X(googleDescription) \
    X(testConnection) \
    X(testSuccess) \
    X(providerGoogle) \
    X(providerOpenAI) \
    X(providerList) \
    X(providerDefaultEngine) \
    X(providerAdd) \
    X(providerRemove) \
    X(providerName) \
    X(providerType) \
    X(providerIcon) \
    X(providerTypeGoogle) \
    X(providerTypeOpenAI) \
    X(providerSetDefault) \
    X(providerDefaultBadge) \
    X(providerDuplicate) \
    X(pipelineSection) \
    X(pipelineHint) \
    X(stepAccessibility) \
    X(alwaysEnabled) \
    X(stepBrowser) \
    X(stepClipboard) \
    X(preferMenuCopy) \
    X(stepOCR) \
    X(ocrSection) \
    X(ocrRegionToggle) \
    X(ocrRegionDescription) \
    X(ocrPointDescription) \
    X(clipboardNote) \
    X(captureShortcut) \
    X(ocrShortcut) \
    X(doubleCopyShortcut) \
    X(shortcutsRecording) \
    X(shortcutsHint) \
    X(resetShortcuts) \
    X(permissionStatus) \
    X(accessibilityPerm) \
    X(accessibilityPermDesc) \
    X(screenPerm) \
    X(screenPermDesc) \
    X(automationPerm) \
    X(automationPermDesc) \
    X(request) \
    X(openSettings) \
    X(refreshStatus) \
    X(restartHint) \
    X(aboutVersionFormat) \
    X(aboutSubtitle) \
    X(errorParse) \
    X(errorEmpty) \
    X(errorGoogleStatus) \
    X(errorHTTPStatus) \
    X(errorInvalidBaseURL) \
    X(errorMalformedBaseURL) \
    X(errorMissingModel) \
    X(errorUnauthorized) \
    X(errorNotFound) \
    X(errorRateLimited) \
    X(errorServer) \
    X(errorHTTPStatusOnly) \
    X(errorTimeout) \
    X(errorOffline) \
    X(errorCannotConnect) \
    X(providerTypeApple) \
    X(appleDescription) \
    X(providerAppleName) \
    X(errorOfflineUnsupported) \
    X(errorOfflineNotInstalled) \
    X(hotKeyInUse) \
    X(hotKeyDuplicate) \
    X(onboardingTitle) \
    X(onboardingSubtitle) \
    X(onboardingContinue) \
    X(loginItemRequiresApproval) \
    X(loginItemNotFound) \
    X(loginItemFailed) \
    X(fallbackNote)
// clang-format on

namespace tovi {

/// A user-visible text; its raw value is the case name.
enum class Str {
#define TOVI_CASE(name) name,
    TOVI_TEXT_KEYS(TOVI_CASE)
#undef TOVI_CASE
};

inline constexpr int strCount = 0
#define TOVI_COUNT(name) +1
    TOVI_TEXT_KEYS(TOVI_COUNT)
#undef TOVI_COUNT
    ;

/// The key's raw value.
inline QLatin1String rawValue(Str key)
{
    static constexpr const char *names[] = {
#define TOVI_NAME(name) #name,
        TOVI_TEXT_KEYS(TOVI_NAME)
#undef TOVI_NAME
    };
    return QLatin1String(names[static_cast<int>(key)]);
}

} // namespace tovi
