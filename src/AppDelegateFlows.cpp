// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include <QPointer>

#include "Capture/CaptureManager.h"
#include "Capture/ClipboardCapturer.h"
#include "Localization.h"
#include "Localization/RecognitionTexts.h"
#include "Platform/Accessibility.h"
#include "Platform/Application.h"
#include "Platform/Clock.h"
#include "Platform/PasteboardQueue.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/TextRecognizer.h"
#include "Platform/Trace.h"
#include "Platform/Workspace.h"
#include "Settings.h"
#include "Translation/ProviderErrorMapper.h"
#include "Translation/Translator.h"
#include "UI/ResultPanelManager.h"
#include "UI/ResultViewModel.h"
#include "UI/ScreenSelectionController.h"

namespace tovi {

namespace {

constexpr auto slowCaptureLimit = std::chrono::seconds(4);
constexpr auto resizeInterval = std::chrono::milliseconds(100);

QString t(Str key)
{
    return Localization::shared().t(key);
}

/// What to say of a picture without a text.
QString noTextMessage()
{
    const bool canRead = Platform::current().textRecognizer().isPresent();
    return canRead ? t(Str::messageOCRNoText)
                   : RecognitionTexts::notInstalled(Localization::shared().resolvedLanguage());
}

/// What to say when OCR ended without a text.
QString noOCRTextMessage()
{
    const bool mayRecord = Platform::current().screenCapture().preflightAccess();
    return mayRecord ? noTextMessage() : t(Str::messageScreenPermission);
}

void resizePanel(const ResultViewModel &model)
{
    if (const auto resize = model.onResize)
        resize();
}

} // namespace

void AppDelegate::triggerCapture()
{
    performCapture(false, std::nullopt);
}

void AppDelegate::performCapture(bool preferOCR, std::optional<QPointF> at)
{
    // Its panel would come under the overlay.
    ScreenSelectionController::shared().cancel();
    m_isCapturing = true;
    const qint64 token = nextToken();
    Trace::mark("captureStarted");
    runCapture(preferOCR, at, token);
}

qint64 AppDelegate::nextToken()
{
    m_recognition.request_stop();
    m_recognition = std::stop_source();
    return ++m_captureToken;
}

QCoro::Task<> AppDelegate::runCapture(bool preferOCR, std::optional<QPointF> at, qint64 token)
{
    const QPointer self(this);
    const auto appName = Platform::current().workspace().frontmostName();
    const auto holder = std::make_shared<ProgressHolder>();

    m_watchdog = Platform::current().clock().after(slowCaptureLimit, [self, token, holder] {
        if (self)
            self->abandonSlowCapture(token, *holder);
    });
    const auto onProgress = [self, token, holder, appName](OCRProgress progress) {
        if (!self || !self->isCurrent(token))
            return;
        if (!holder->model)
            holder->model = self->showOCRProgress(token, std::nullopt, appName);
        holder->model->updateOCRProgress(progress);
    };
    auto capture = CaptureManager::shared().capture(preferOCR, at, onProgress, m_recognition.get_token());
    ResultPanelManager::shared().prepare();
    const auto result = co_await capture;
    if (self && isCurrent(token))
        captureFinished(result, holder->model);
}

void AppDelegate::captureFinished(const std::optional<CaptureResult> &result, const Model &progressModel)
{
    m_isCapturing = false;
    m_watchdog.reset();
    Trace::mark("captured", {{"source", result ? static_cast<int>(result->source) : -1},
                             {"bounds", result && result->bounds ? 1 : 0}});
    if (result) {
        if (progressModel)
            progressModel->finishOCR(result->text, std::nullopt);
        present(*result, progressModel);
    } else if (progressModel) {
        progressModel->finishOCR(std::nullopt, noOCRTextMessage());
    } else if (Platform::current().accessibility().isProcessTrusted()) {
        Platform::current().application().beep();
        showMessage(t(Str::messageNoText));
    } else {
        Platform::current().accessibility().requestTrust();
        showMessage(t(Str::messageNeedAccessibility));
    }
}

void AppDelegate::abandonSlowCapture(qint64 token, const ProgressHolder &holder)
{
    if (!isCurrent(token) || !m_isCapturing || holder.model)
        return;
    m_isCapturing = false;
    nextToken();
    Platform::current().application().beep();
    showMessage(t(Str::messageTimeout));
}

void AppDelegate::showMessage(const QString &message)
{
    const auto model = std::make_shared<ResultViewModel>(CaptureResult{.text = message});
    model->isLoading = false;
    ResultPanelManager::shared().show(model, std::nullopt);
}

AppDelegate::Model AppDelegate::showOCRProgress(qint64 token, std::optional<QRectF> bounds,
                                                std::optional<QString> appName)
{
    const auto model = std::make_shared<ResultViewModel>(
        CaptureResult{.source = CaptureSource::ocr, .bounds = bounds, .appName = appName});
    model->updateOCRProgress(OCRProgress::capturing);
    ResultPanelManager::shared().show(model, bounds);
    model->onDismiss = [self = QPointer(this), token] {
        if (!self || !self->isCurrent(token))
            return;
        self->nextToken();
        self->m_isCapturing = false;
    };
    return model;
}

void AppDelegate::triggerOCR()
{
    if (!Settings::shared().ocrRegionSelection) {
        performCapture(true, Platform::current().workspace().mouseLocation());
        return;
    }
    const qint64 token = nextToken();
    m_isCapturing = false;
    const auto appName = Platform::current().workspace().frontmostName();
    ScreenCapture &screenCapture = Platform::current().screenCapture();
    if (!screenCapture.preflightAccess())
        screenCapture.requestAccess();
    ResultPanelManager::shared().closeUnpinned();
    ScreenSelectionController::shared().begin(
        [self = QPointer(this), token, appName](std::optional<QRectF> rect) {
            if (self && rect && self->isCurrent(token))
                self->performRegionOCR(*rect, token, appName);
        });
}

QCoro::Task<> AppDelegate::performRegionOCR(QRectF rect, qint64 token, std::optional<QString> appName)
{
    const QPointer self(this);
    m_isCapturing = true;
    const Model model = showOCRProgress(token, rect, appName);
    const auto onProgress = [self, token, model](OCRProgress progress) {
        if (self && self->isCurrent(token))
            model->updateOCRProgress(progress);
    };
    auto recognition = OCRCapturer::recognizeText(rect, onProgress, m_recognition.get_token());
    const OCRResult result = co_await recognition;
    if (!self || !isCurrent(token))
        co_return;
    m_isCapturing = false;
    switch (result.kind) {
    case OCRResult::Kind::text:
        model->finishOCR(result.text, std::nullopt);
        configure(model);
        translate(result.text, model, Settings::shared().currentProviderID);
        break;
    case OCRResult::Kind::noText:
        model->finishOCR(std::nullopt, noTextMessage());
        break;
    case OCRResult::Kind::permissionDenied:
        model->finishOCR(std::nullopt, noOCRTextMessage());
        break;
    }
}

void AppDelegate::present(const CaptureResult &capture, Model existingModel)
{
    const Model model = existingModel ? existingModel : std::make_shared<ResultViewModel>(capture);
    configure(model);
    if (!existingModel)
        ResultPanelManager::shared().show(model, capture.bounds);
    translate(capture.text, model, Settings::shared().currentProviderID);
}

void AppDelegate::configure(const Model &model)
{
    const QPointer self(this);
    const std::weak_ptr weakModel = model;
    // The callbacks live in the model: holding it strongly would keep it alive for ever.
    const auto retranslate = [self, weakModel](const QUuid &providerID) {
        const auto target = weakModel.lock();
        if (self && target)
            self->translate(target->sourceText, target, providerID);
    };
    model->onSelectProvider = [retranslate](QUuid id) {
        Settings::shared().currentProviderID = id;
        retranslate(id);
    };
    model->onSelectLanguage = [retranslate](const QString &) {
        retranslate(Settings::shared().currentProviderID);
    };
    model->onSelectSourceLanguage = model->onSelectLanguage;
    model->onSubmitSource = [self, weakModel] {
        const auto target = weakModel.lock();
        if (!self || !target)
            return;
        const QString text = target->sourceText->trimmed();
        if (!text.isEmpty())
            self->translate(text, target, Settings::shared().currentProviderID);
    };
}

void AppDelegate::translate(const QString &text, const Model &model, const QUuid &providerID)
{
    model->isLoading = true;
    model->errorMessage = std::nullopt;
    model->note = std::nullopt;
    model->translatedText = QString();
    resizePanel(*model);
    runTranslation(text, model, providerID, ++model->requestNumber);
}

QCoro::Task<> AppDelegate::runTranslation(QString text, Model model, QUuid providerID, int number)
{
    // A slow answer must not replace that of a newer request.
    const auto isLatest = [model, number] { return model->requestNumber == number; };
    // Shared: the handler is copied on its way through the translator.
    const auto lastResize = std::make_shared<Clock::Time>(Clock::distantPast());
    const auto onDelta = [model, lastResize, isLatest](const QString &partial) {
        if (!isLatest())
            return;
        model->translatedText = partial;
        model->isLoading = false;
        const auto now = Platform::current().clock().now();
        if (now - *lastResize > resizeInterval) {
            *lastResize = now;
            resizePanel(*model);
        }
    };
    try {
        // Not in one expression: the compiler destroys converted arguments of an awaited call twice.
        auto translation = Translator::shared().translate(text, Settings::shared().targetLanguage,
                                                          model->sourceLanguage, providerID, onDelta);
        const TranslationResult result = co_await translation;
        if (!isLatest())
            co_return;
        model->translatedText = result.translatedText;
        model->phonetic = result.dictionary ? result.dictionary->phonetic : std::nullopt;
        model->meanings = result.dictionary ? result.dictionary->meanings : QStringList();
        model->providerName = result.providerName;
        model->note = result.note;
    } catch (const TranslationError &error) {
        if (isLatest())
            model->errorMessage = formatted(t(Str::resultTranslateFailed), {error.localizedDescription()});
    } catch (...) {
        const TranslationError error = ProviderErrorMapper::network(std::current_exception());
        if (isLatest())
            model->errorMessage = formatted(t(Str::resultTranslateFailed), {error.localizedDescription()});
    }
    if (!isLatest())
        co_return;
    model->isLoading = false;
    resizePanel(*model);
}

QCoro::Task<> AppDelegate::captureFromPasteboard()
{
    if (m_isCapturing)
        co_return;
    const QPointer self(this);
    const auto appName = Platform::current().workspace().frontmostName();
    auto reading = PasteboardQueue::shared().run(ClipboardCapturer::readPasteboardText);
    const auto text = co_await reading;
    if (!self)
        co_return;
    if (text)
        present({.text = *text, .source = CaptureSource::pasteboard, .appName = appName}, nullptr);
    else
        Platform::current().application().beep();
}

void AppDelegate::triggerInputTranslation()
{
    ScreenSelectionController::shared().cancel();
    ResultPanelManager::shared().closeUnpinned();
    const auto model = std::make_shared<ResultViewModel>(CaptureResult{});
    model->isInputPanel = true;
    model->isLoading = false;
    configure(model);
    ResultPanelManager::shared().show(model, std::nullopt);
}

} // namespace tovi
