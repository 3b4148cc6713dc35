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
    QList<ProviderConfig> providers; ///< as they were when the panel opened
    Published<QUuid> currentProviderID;
    Published<QString> targetLanguage; ///< a language code
    Published<QString> sourceLanguage; ///< a language code or "auto"
    Published<std::optional<OCRProgress>> ocrProgress{this, {}};
    Published<std::optional<Clock::Time>> ocrStartedAt{this, {}}; ///< when the first phase was reported
    Published<QString> translatedText{this, {}};                  ///< so far
    Published<std::optional<QString>> phonetic{this, {}};
    Published<QStringList> meanings{this, {}};
    Published<bool> isLoading{this, true};
    Published<std::optional<QString>> errorMessage{this, {}};
    Published<std::optional<QString>> providerName{this, {}}; ///< the engine that produced the result
    Published<std::optional<QString>> note{this, {}};
    Published<std::optional<SpeakingTarget>> speakingTarget{this, {}};
    Published<bool> didCopy{this, false}; ///< for a short time after copying
    Published<bool> isPinned{this, false};
    Published<bool> isInputPanel{this, false};

    int requestNumber = 0; ///< of the latest translation asked for; answers to older ones are dropped

    /// What needs a window or an engine goes out through these; each may be unset.
    std::function<void()> onDismiss;                     ///< the panel closed
    std::function<void()> onClose;                       ///< close the panel
    std::function<void()> onResize;                      ///< fit the panel to its content
    std::function<void(QUuid)> onSelectProvider;         ///< retranslate with this engine
    std::function<void(bool)> onTogglePin;               ///< the new pinned state
    std::function<void(QString)> onSelectLanguage;       ///< retranslate into this language
    std::function<void(QString)> onSelectSourceLanguage; ///< retranslate from this language
    std::function<void()> onSubmitSource;                ///< translate the edited source text

    QString currentLanguageName() const;
    QString currentSourceLanguageName() const;
    QString currentProviderName() const;
    QString currentProviderIcon() const;

    /// A recognition entered this phase.
    void updateOCRProgress(OCRProgress progress);
    /// The recognition ended; without a text the old source text stays.
    void finishOCR(std::optional<QString> text, std::optional<QString> error);
    /// A language chosen in the panel becomes the default of later ones.
    void selectLanguage(const QString &code);
    void selectSourceLanguage(const QString &code);
    /// An engine chosen in the panel holds for this panel only.
    void selectProvider(const QUuid &id);
    /// Copies the translation, else the source text.
    void copyResult();
    /// Reads the text aloud, or stops where this target is being read. A blank text does nothing.
    void toggleSpeech(SpeakingTarget target, const QString &text);

private:
    const ProviderConfig *currentProvider() const;

    Subscription m_copyReset;
};

} // namespace tovi
