// SPDX-License-Identifier: MIT
#include "Translation/OpenAICompatibleProvider.h"

#include <cmath>

#include <QJsonArray>
#include <QJsonDocument>

#include "Json.h"
#include "Localization.h"
#include "Platform/Platform.h"
#include "TargetLanguage.h"
#include "Text.h"
#include "Translation/ChatStream.h"
#include "Translation/ProviderErrorMapper.h"

namespace tovi {

namespace {

// Decoded JSON takes up to fifty times the memory of its text.
constexpr qsizetype longestAnswer = 2 * 1024 * 1024;
constexpr qsizetype longestErrorBody = 256 * 1024;
constexpr qsizetype longestStreamedText = 1024 * 1024; // UTF-16 units

TranslationError missing(const QString &message)
{
    return TranslationError::missingConfiguration(message);
}

QString systemPrompt(QString prompt, const QString &target, const QString &source)
{
    const QString placeholder = QStringLiteral("{{source}}");
    prompt.replace(QStringLiteral("{{target}}"), TargetLanguages::name(target));
    if (source.isEmpty() || source == QLatin1String("auto"))
        return prompt.replace(placeholder, QStringLiteral("auto-detected"));
    const QString sourceName = TargetLanguages::name(source);
    if (prompt.contains(placeholder))
        return prompt.replace(placeholder, sourceName);
    return prompt + QStringLiteral("\n\nThe source language is: ") + sourceName + QLatin1Char('.');
}

QJsonObject message(const QString &role, const QString &content)
{
    return {{QStringLiteral("role"), role}, {QStringLiteral("content"), content}};
}

std::optional<QString> contentOfChoice(const QJsonObject &choice)
{
    const QJsonValue content =
        choice.value(QLatin1String("message")).toObject().value(QLatin1String("content"));
    if (const auto text = textValue(content))
        return text;
    if (const auto parts = arrayOfObjects(content)) {
        QString joined;
        for (const QJsonObject &part : *parts)
            joined += part.value(QLatin1String("text")).toString();
        return joined;
    }
    return textValue(choice.value(QLatin1String("text")));
}

/// A text that grows while a reader keeps its last state: two copies take turns, so that the one to grow is
/// the one that the reader has let go of, and no piece costs a copy of the whole.
class GrowingText
{
public:
    const QString &append(const QString &piece)
    {
        std::swap(m_current, m_other);
        m_current += m_missing;
        m_current += piece;
        m_missing = piece;
        return m_current;
    }
    const QString &text() const { return m_current; }

private:
    QString m_current;
    QString m_other;
    QString m_missing; // of the other
};

QString nonEmpty(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        throw TranslationError::empty();
    return trimmed;
}

} // namespace

OpenAICompatibleProvider::OpenAICompatibleProvider(const ProviderConfig &config, Clock::Duration timeout)
    : m_name(config.displayName())
    , m_config(config)
    , m_session(Platform::current().urlLoading().makeSession({timeout, timeout + std::chrono::seconds(20)}))
{}

std::optional<QUrl> OpenAICompatibleProvider::endpoint(const QString &base)
{
    QString address = base;
    while (address.endsWith(QLatin1Char('/')))
        address.chop(1);
    const auto endsWith = [&](const char *suffix) { return address.endsWith(QLatin1String(suffix)); };
    if (!endsWith("/chat/completions")) {
        const bool hasVersion = endsWith("/v1") || endsWith("/v1beta") || endsWith("/openai");
        address += QLatin1String(hasVersion ? "/chat/completions" : "/v1/chat/completions");
    }
    const QUrl url(address, QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isWeb && !url.host().isEmpty() ? std::optional(url) : std::nullopt;
}

URLRequest OpenAICompatibleProvider::makeRequest(bool stream, const QString &text, const QString &target,
                                                 const QString &source) const
{
    const Localization &localization = Localization::shared();
    const QString base = m_config.baseURL.trimmed();
    if (base.isEmpty())
        throw missing(localization.t(Str::errorInvalidBaseURL));
    const auto url = endpoint(base);
    if (!url)
        throw missing(formatted(localization.t(Str::errorMalformedBaseURL), {base}));
    if (isBlank(m_config.model))
        throw missing(localization.t(Str::errorMissingModel));
    if (!std::isfinite(m_config.temperature))
        throw JSONError(JSONError::Kind::notSerializable);
    const QJsonObject body{
        {QStringLiteral("model"), m_config.model},
        {QStringLiteral("temperature"), m_config.temperature},
        {QStringLiteral("stream"), stream},
        {QStringLiteral("messages"),
         QJsonArray{message(QStringLiteral("system"), systemPrompt(m_config.systemPrompt, target, source)),
                    message(QStringLiteral("user"), text)}},
    };
    URLRequest request{.url = *url,
                       .method = URLRequest::Method::post,
                       .headers = {{"Content-Type", "application/json"}},
                       .body = QJsonDocument(body).toJson(QJsonDocument::Compact)};
    if (stream)
        request.headers.emplaceBack("Accept", "text/event-stream");
    if (!m_config.apiKey.isEmpty())
        request.headers.emplaceBack("Authorization", "Bearer " + m_config.apiKey.toUtf8());
    return request;
}

QCoro::Task<TranslationResult> OpenAICompatibleProvider::translate(QString text, QString target,
                                                                   QString source)
{
    try {
        auto receiving = receiveWhole(makeRequest(false, text, target, source));
        const QString translated = co_await receiving;
        co_return TranslationResult{translated, std::nullopt, std::nullopt, m_name, std::nullopt};
    } catch (const TranslationError &) {
        throw;
    } catch (...) {
        throw ProviderErrorMapper::network(std::current_exception());
    }
}

QCoro::Task<TranslationResult> OpenAICompatibleProvider::translateStream(QString text, QString target,
                                                                         QString source, DeltaHandler onDelta)
{
    try {
        auto receiving = receiveStream(makeRequest(true, text, target, source), onDelta);
        const QString translated = co_await receiving;
        co_return TranslationResult{translated, std::nullopt, std::nullopt, m_name, std::nullopt};
    } catch (const TranslationError &) {
        throw;
    } catch (...) {
        throw ProviderErrorMapper::network(std::current_exception());
    }
}

QCoro::Task<QString> OpenAICompatibleProvider::receiveWhole(URLRequest request) const
{
    const auto task = m_session->start(request);
    const auto answering = task->response();
    const URLResponse response = co_await answering;
    auto reading = response.isSuccess() ? task->readAll(longestAnswer) : task->readAtMost(longestErrorBody);
    const QByteArray body = co_await reading;
    if (!response.isSuccess())
        throw TranslationError::network(
            ProviderErrorMapper::friendlyHTTPError(response.statusCode, body, m_config.apiKey));
    co_return parseContent(body, m_config.apiKey);
}

QCoro::Task<QString> OpenAICompatibleProvider::receiveStream(URLRequest request, DeltaHandler onDelta) const
{
    const auto task = m_session->start(request);
    const auto answering = task->response();
    const URLResponse response = co_await answering;
    if (!response.isSuccess()) {
        auto reading = task->readAtMost(longestErrorBody);
        QByteArray body = co_await reading;
        body.removeIf([](char c) { return c == '\n' || c == '\r'; });
        throw TranslationError::network(
            ProviderErrorMapper::friendlyHTTPError(response.statusCode, body, m_config.apiKey));
    }
    ChatStream stream;
    GrowingText accumulated;
    for (bool isAtEnd = false; !isAtEnd && !stream.isDone();) {
        const auto reading = task->read();
        const QByteArray piece = co_await reading;
        isAtEnd = piece.isEmpty();
        isAtEnd ? stream.finish() : stream.append(piece);
        while (const auto delta = stream.next()) {
            if (accumulated.text().size() + delta->size() > longestStreamedText)
                throw URLError(URLError::Code::dataLengthExceedsMaximum);
            auto delivering = onDelta(accumulated.append(*delta));
            co_await delivering;
        }
    }
    co_return nonEmpty(accumulated.text());
}

QString OpenAICompatibleProvider::parseContent(const QByteArray &body, const QString &apiKey)
{
    const QJsonValue decoded = decodeJson(body);
    if (!decoded.isObject())
        throw TranslationError::parse();
    const QJsonObject root = decoded.toObject();
    const auto choices = arrayOfObjects(root.value(QLatin1String("choices")));
    if (choices && !choices->isEmpty()) {
        if (const auto content = contentOfChoice(choices->first()))
            return nonEmpty(*content);
    }
    const QJsonObject error = root.value(QLatin1String("error")).toObject();
    if (const auto text = textValue(error.value(QLatin1String("message"))))
        throw TranslationError::network(ProviderErrorMapper::withoutKey(*text, apiKey));
    throw TranslationError::parse();
}

} // namespace tovi
