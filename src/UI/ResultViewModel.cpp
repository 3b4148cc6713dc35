// SPDX-License-Identifier: MIT
#include "UI/ResultViewModel.h"

#include "Localization.h"
#include "Platform/Pasteboard.h"
#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"
#include "Settings.h"
#include "Speech.h"
#include "Text.h"

namespace tovi {

namespace {

constexpr std::chrono::milliseconds copyFeedback{1200};

/// The callback may replace itself or end its owner, so a copy of it runs.
template <class... Args>
void callIfSet(const std::function<void(Args...)> &callback, std::type_identity_t<Args>... args)
{
    if (const auto alive = callback)
        alive(args...);
}

} // namespace

ResultViewModel::ResultViewModel(const CaptureResult &capture)
    : sourceText(this, capture.text)
    , providers(Settings::shared().providers)
    , currentProviderID(this, Settings::shared().currentProviderID)
    , targetLanguage(this, Settings::shared().targetLanguage)
    , sourceLanguage(this, Settings::shared().sourceLanguage)
{}

const ProviderConfig *ResultViewModel::currentProvider() const
{
    const auto it = std::ranges::find(providers, currentProviderID.get(), &ProviderConfig::id);
    return it == providers.end() ? nullptr : &*it;
}

QString ResultViewModel::currentLanguageName() const
{
    return TargetLanguages::ownName(targetLanguage);
}

QString ResultViewModel::currentSourceLanguageName() const
{
    if (sourceLanguage.get() == QLatin1String("auto"))
        return Localization::shared().t(Str::autoDetect);
    return TargetLanguages::ownName(sourceLanguage);
}

QString ResultViewModel::currentProviderName() const
{
    const auto *provider = currentProvider();
    return provider ? provider->displayName() : providerName->value_or(QString());
}

QString ResultViewModel::currentProviderIcon() const
{
    const auto *provider = currentProvider();
    return provider ? provider->iconIdentifier() : QStringLiteral("cloud");
}

void ResultViewModel::updateOCRProgress(OCRProgress progress)
{
    if (!ocrStartedAt.get())
        ocrStartedAt = Platform::current().clock().now();
    ocrProgress = progress;
    isLoading = true;
    callIfSet(onResize);
}

void ResultViewModel::finishOCR(std::optional<QString> text, std::optional<QString> error)
{
    ocrProgress = std::nullopt;
    ocrStartedAt = std::nullopt;
    if (text)
        sourceText = *text;
    errorMessage = error;
    isLoading = false;
    onDismiss = nullptr; // closing the panel no longer concerns the capture
    callIfSet(onResize);
}

void ResultViewModel::selectLanguage(const QString &code)
{
    if (code == targetLanguage.get())
        return;
    targetLanguage = code;
    Settings::shared().targetLanguage = code;
    Platform::current().userDefaults().set(QStringLiteral("targetLanguage"), code);
    callIfSet(onSelectLanguage, code);
}

void ResultViewModel::selectSourceLanguage(const QString &code)
{
    if (code == sourceLanguage.get())
        return;
    sourceLanguage = code;
    Settings::shared().sourceLanguage = code;
    Platform::current().userDefaults().set(QStringLiteral("sourceLanguage"), code);
    callIfSet(onSelectSourceLanguage, code);
}

void ResultViewModel::selectProvider(const QUuid &id)
{
    if (id == currentProviderID.get())
        return;
    currentProviderID = id;
    callIfSet(onSelectProvider, id);
}

void ResultViewModel::copyResult()
{
    Platform::current().pasteboard().setString(translatedText->isEmpty() ? sourceText.get()
                                                                         : translatedText.get());
    didCopy = true;
    m_copyReset = Platform::current().clock().after(copyFeedback, [this] { didCopy = false; });
}

void ResultViewModel::toggleSpeech(SpeakingTarget target, const QString &text)
{
    if (isBlank(text))
        return;
    if (speakingTarget.get() == target) {
        Speech::shared().stop();
        speakingTarget = std::nullopt;
        return;
    }
    speakingTarget = target;
    Speech::shared().speak(text, [weak = weak_from_this(), target] {
        const auto self = weak.lock();
        if (self && self->speakingTarget.get() == target)
            self->speakingTarget = std::nullopt;
    });
}

} // namespace tovi
