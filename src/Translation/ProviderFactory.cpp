// SPDX-License-Identifier: MIT
#include "Translation/ProviderFactory.h"

#include "Localization.h"
#include "Translation/AppleTranslation.h"

namespace tovi {

namespace {

/// Answers every request with "Cannot reach the server": this build speaks no web protocol.
class UnreachableProvider final : public TranslationProvider
{
public:
    explicit UnreachableProvider(const QString &name)
        : m_name(name)
    {}
    QString name() const override { return m_name; }
    bool supportsStreaming() const override { return false; }
    QCoro::Task<TranslationResult> translate(QString, QString, QString) override
    {
        throw TranslationError::network(Localization::shared().t(Str::errorCannotConnect));
        co_return TranslationResult{};
    }

private:
    const QString m_name;
};

std::unique_ptr<TranslationProvider> makeGoogle(const QString &name)
{
    return std::make_unique<UnreachableProvider>(name);
}

std::unique_ptr<TranslationProvider> makeOpenAI(const QString &name)
{
    return std::make_unique<UnreachableProvider>(name);
}

} // namespace

std::unique_ptr<TranslationProvider> makeProvider(const ProviderConfig &config, const QString &name,
                                                  Clock::Duration timeout)
{
    Q_UNUSED(timeout)
    switch (config.kind) {
    case ProviderKind::google:
        return makeGoogle(name);
    case ProviderKind::openAI:
        return makeOpenAI(name);
    case ProviderKind::apple:
        break;
    }
    return std::make_unique<AppleTranslationProvider>(name);
}

} // namespace tovi
