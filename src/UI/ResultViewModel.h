// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

#include "Capture/CaptureResult.h"
#include "Capture/OCRCapturer.h"
#include "Platform/Clock.h"
#include "Platform/Observable.h"
#include "ProviderConfig.h"

namespace tovi {

/// The observable state of one result panel; knows no window. Main thread.
class ResultViewModel : public Observable, public std::enable_shared_from_this<ResultViewModel>
{
public:
    enum class SpeakingTarget { source, translation };

    explicit ResultViewModel(const CaptureResult &capture);

    Published<QString> sourceText;
    QList<ProviderConfig> providers;
    Published<QUuid> currentProviderID;
    Published<QString> targetLanguage;
    Published<QString> sourceLanguage;
    Published<std::optional<OCRProgress>> ocrProgress;
    Published<std::optional<Clock::Time>> ocrStartedAt;
    Published<QString> translatedText;
    Published<std::optional<QString>> phonetic;
    Published<QStringList> meanings;
    Published<bool> isLoading;
    Published<std::optional<QString>> errorMessage;
    Published<std::optional<QString>> providerName;
    Published<std::optional<QString>> note;
    Published<std::optional<SpeakingTarget>> speakingTarget;
    Published<bool> didCopy;
    Published<bool> isPinned;
    Published<bool> isInputPanel;

    std::function<void()> onDismiss;
    std::function<void()> onClose;
    std::function<void()> onResize;
    std::function<void(QUuid)> onSelectProvider;
    std::function<void(bool)> onTogglePin;
    std::function<void(QString)> onSelectLanguage;
    std::function<void(QString)> onSelectSourceLanguage;
    std::function<void()> onSubmitSource;

    QString currentLanguageName() const;
    QString currentSourceLanguageName() const;
    QString currentProviderName() const;
    QString currentProviderIcon() const;

    void updateOCRProgress(OCRProgress progress);
    void finishOCR(std::optional<QString> text, std::optional<QString> error);
    void selectLanguage(const QString &code);
    void selectSourceLanguage(const QString &code);
    void selectProvider(const QUuid &id);
    void copyResult();
    void toggleSpeech(SpeakingTarget target, const QString &text);

private:
    Subscription m_copyReset;
};

} // namespace tovi
