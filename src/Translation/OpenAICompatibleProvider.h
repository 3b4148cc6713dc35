// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/URLSession.h"
#include "ProviderConfig.h"
#include "Translation/TranslationProvider.h"

namespace tovi {

/// Any service that speaks the chat completions protocol, led by a system prompt.
class OpenAICompatibleProvider final : public TranslationProvider
{
public:
    /// The time-out bounds the server's silence; the whole request may take 20 s longer.
    OpenAICompatibleProvider(const ProviderConfig &config, Clock::Duration timeout);

    QString name() const override { return m_name; }
    bool supportsStreaming() const override { return true; }
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source) override;
    QCoro::Task<TranslationResult> translateStream(QString text, QString target, QString source,
                                                   DeltaHandler onDelta) override;

    /// The address of the service's completions, from a trimmed base URL; none when that is no web address.
    static std::optional<QUrl> endpoint(const QString &base);
    /// The translation in a whole answer; throws JSONError or TranslationError, which do not tell the key.
    static QString parseContent(const QByteArray &body, const QString &apiKey = {});

private:
    URLRequest makeRequest(bool stream, const QString &text, const QString &target,
                           const QString &source) const;
    QCoro::Task<QString> receiveWhole(URLRequest request) const;
    QCoro::Task<QString> receiveStream(URLRequest request, DeltaHandler onDelta) const;

    const QString m_name;
    const ProviderConfig m_config;
    const std::unique_ptr<URLSession> m_session;
};

} // namespace tovi
