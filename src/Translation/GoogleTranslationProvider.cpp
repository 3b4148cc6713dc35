// SPDX-License-Identifier: MIT
#include "Translation/GoogleTranslationProvider.h"

#include <QJsonArray>

#include "Endpoints.h"
#include "Json.h"
#include "Localization.h"
#include "Platform/Platform.h"
#include "Translation/ProviderErrorMapper.h"

namespace tovi {

namespace {

// Decoded JSON takes up to fifty times the memory of its text.
constexpr qsizetype longestAnswer = 2 * 1024 * 1024;

URLRequest makeRequest(const QString &text, const QString &target, const QString &source)
{
    const std::pair<const char *, QString> items[] = {
        {"client", QStringLiteral("gtx")},
        {"sl", source.isEmpty() ? QStringLiteral("auto") : source},
        {"tl", target},
        {"dt", QStringLiteral("t")},
        {"q", text},
    };
    QByteArray query;
    for (const auto &[name, value] : items)
        query += (query.isEmpty() ? '?' : '&') + QByteArray(name) + '=' + QUrl::toPercentEncoding(value);
    const QUrl url = QUrl::fromEncoded(Endpoints::googleOrigin().toUtf8() + "/translate_a/single" + query,
                                       QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty())
        throw TranslationError::parse();
    return {.url = url,
            .headers = {{"User-Agent", "Mozilla/5.0 (Macintosh; Intel Mac OS X 10_15_7) AppleWebKit/605.1.15 "
                                       "(KHTML, like Gecko)"}}};
}

} // namespace

GoogleTranslationProvider::GoogleTranslationProvider(const QString &name, Clock::Duration timeout)
    : m_name(name)
    , m_session(Platform::current().urlLoading().makeSession({timeout, timeout + std::chrono::seconds(10)}))
{}

QCoro::Task<TranslationResult> GoogleTranslationProvider::translate(QString text, QString target,
                                                                    QString source)
{
    try {
        const auto task = m_session->start(makeRequest(text, target, source));
        const auto answering = task->response();
        const URLResponse response = co_await answering;
        if (!response.isSuccess()) {
            throw TranslationError::network(formatted(Localization::shared().t(Str::errorGoogleStatus),
                                                      {QString::number(response.statusCode)}));
        }
        auto reading = task->readAll(longestAnswer);
        const QByteArray body = co_await reading;
        const Answer answer = parse(body);
        co_return TranslationResult{answer.text, answer.source, std::nullopt, m_name, std::nullopt};
    } catch (const TranslationError &) {
        throw;
    } catch (...) {
        throw ProviderErrorMapper::network(std::current_exception());
    }
}

GoogleTranslationProvider::Answer GoogleTranslationProvider::parse(const QByteArray &body)
{
    const QJsonArray root = decodeJson(body).toArray();
    if (!root.at(0).isArray())
        throw TranslationError::parse();
    Answer answer;
    const QJsonArray segments = root.at(0).toArray();
    for (const QJsonValue segment : segments)
        answer.text += segment.toArray().at(0).toString();
    answer.source = textValue(root.at(2));
    if (answer.text.isEmpty())
        throw TranslationError::empty();
    return answer;
}

} // namespace tovi
