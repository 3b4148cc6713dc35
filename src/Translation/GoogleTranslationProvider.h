// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/URLSession.h"
#include "Translation/TranslationProvider.h"

namespace tovi {

/// The keyless web endpoint, which detects the source language itself.
class GoogleTranslationProvider final : public TranslationProvider
{
public:
    /// The time-out bounds the server's silence; the whole request may take 10 s longer.
    GoogleTranslationProvider(const QString &name, Clock::Duration timeout);

    QString name() const override { return m_name; }
    bool supportsStreaming() const override { return false; }
    QCoro::Task<TranslationResult> translate(QString text, QString target, QString source) override;

    struct Answer
    {
        QString text;
        std::optional<QString> source; ///< the detected language's code
    };
    /// Throws JSONError or TranslationError.
    static Answer parse(const QByteArray &body);

private:
    const QString m_name;
    const std::unique_ptr<URLSession> m_session;
};

} // namespace tovi
