// SPDX-License-Identifier: MIT
#include "Endpoints.h"
#include "Platform/Clock.h"
#include "Platform/Platform.h"
#include "Platform/SystemLog.h"
#include "Platform/UserDefaults.h"
#include "ProviderKeys.h"
#include "Settings.h"

namespace tovi {

namespace {

const QString providersKey = QStringLiteral("providers");
constexpr auto saveDelay = std::chrono::milliseconds(400);
// A key store that hangs costs at most two seconds before the file takes its place.
constexpr auto quitLimit = std::chrono::seconds(4);

/// Marks the first Google and the first Apple engine as built in, adding those that are missing.
void ensureBuiltIns(QList<ProviderConfig> &list)
{
    const auto first = [&list](ProviderKind kind) {
        return std::find_if(list.begin(), list.end(),
                            [kind](const ProviderConfig &config) { return config.kind == kind; });
    };
    auto google = first(ProviderKind::google);
    if (google == list.end())
        google = list.insert(list.begin(), ProviderConfig::makeGoogle());
    google->isBuiltIn = true;

    if (const auto apple = first(ProviderKind::apple); apple != list.end())
        apple->isBuiltIn = true;
    else
        list.insert(std::next(google), ProviderConfig::makeApple());
}

} // namespace

void Settings::loadProviders()
{
    m_keys = std::make_unique<ProviderKeys>([this](const ProviderKeys::Keys &keys) {
        QList<ProviderConfig> list = providers;
        for (ProviderConfig &config : list)
            config.apiKey = keys.value(config.id, config.apiKey);
        providers.announce(list);
    });

    UserDefaults &defaults = Platform::current().userDefaults();
    const auto storedList = defaults.document(providersKey);
    auto list = ProviderConfig::listFromJson(storedList.value_or(QJsonValue()));
    if (!list || list->isEmpty()) {
        // One slip in a file edited by hand must not cost all engines.
        if (!list && storedList) {
            defaults.set(providersKey + QStringLiteral(".unreadable"), *storedList);
            Platform::current().systemLog().write(
                QStringLiteral(
                    "Tovi: the stored engines are not understood; they are kept as \"%1.unreadable\"")
                    .arg(providersKey));
        }
        migrateLegacyProviders();
        return;
    }
    QList<QUuid> stored;
    for (const ProviderConfig &config : std::as_const(*list))
        stored << config.id;
    ensureBuiltIns(*list);
    providers.load(*list);
    persistProviders(*list);
    if (!provider(currentProviderID))
        currentProviderID.load(list->first().id);
    m_keys->load(stored);
}

void Settings::migrateLegacyProviders()
{
    const UserDefaults &defaults = Platform::current().userDefaults();
    const auto text = [&defaults](const char *key, const QString &fallback) {
        return defaults.string(QLatin1String(key)).value_or(fallback);
    };
    ProviderConfig openAI;
    openAI.id = QUuid::createUuid();
    openAI.name = QStringLiteral("OpenAI");
    openAI.kind = ProviderKind::openAI;
    openAI.baseURL = text("openaiBaseURL", Endpoints::openAIBaseURL());
    openAI.model = text("openaiModel", QStringLiteral("gpt-4o-mini"));
    openAI.temperature = defaults.number(QStringLiteral("openaiTemperature")).value_or(openAI.temperature);
    openAI.systemPrompt = text("openaiSystemPrompt", ProviderConfig::defaultSystemPrompt());
    openAI.fallbackToGoogle = defaults.boolean(QStringLiteral("fallbackToGoogle")).value_or(true);

    QList<ProviderConfig> list{ProviderConfig::makeGoogle(), openAI};
    const bool usesOpenAI = text("translationProvider", {}) == QLatin1String("openai");
    const QUuid chosen = usesOpenAI ? openAI.id : list.first().id;
    ensureBuiltIns(list);
    providers.load(list);
    persistProviders(list);
    currentProviderID = chosen;
    m_keys->loadLegacy(openAI.id);
}

void Settings::providersChanged()
{
    m_keys->noteEdits(providers);
    m_isSavePending = true;
    m_providersSave = Platform::current().clock().after(
        saveDelay, [this, list = providers.get()] { persistProviders(list); });
}

void Settings::persistProviders(const QList<ProviderConfig> &list)
{
    m_isSavePending = false;
    m_keys->save(list);
    if (const auto json = ProviderConfig::listToJson(list))
        Platform::current().userDefaults().set(providersKey, *json);
}

void Settings::flush()
{
    if (m_isSavePending) {
        m_providersSave.reset();
        persistProviders(providers);
    }
    m_keys->finish(quitLimit);
}

QCoro::Task<> Settings::keyLoaded(QUuid id)
{
    if (const auto loading = m_keys->loading(id))
        co_await *loading;
}

ProviderConfig Settings::currentProvider() const
{
    if (const auto chosen = provider(currentProviderID))
        return *chosen;
    return providers->isEmpty() ? ProviderConfig::makeGoogle() : providers->first();
}

std::optional<ProviderConfig> Settings::provider(const QUuid &id) const
{
    for (const ProviderConfig &config : providers.get()) {
        if (config.id == id)
            return config;
    }
    return std::nullopt;
}

void Settings::addProvider(const ProviderConfig &config)
{
    providers = providers.get() + QList{config};
}

void Settings::removeProvider(const QUuid &id)
{
    if (const auto config = provider(id); config && config->isBuiltIn.value_or(false))
        return;
    QList<ProviderConfig> list = providers;
    list.removeIf([&id](const ProviderConfig &config) { return config.id == id; });
    providers = list;
    if (providers->isEmpty())
        providers = {ProviderConfig::makeGoogle()};
    if (currentProviderID.get() == id)
        currentProviderID = providers->first().id;
    m_keys->remove(id);
}

void Settings::resetSystemPrompt(const QUuid &id)
{
    QList<ProviderConfig> list = providers;
    for (ProviderConfig &config : list) {
        if (config.id == id) {
            config.systemPrompt = ProviderConfig::defaultSystemPrompt();
            providers = list;
            return;
        }
    }
}

} // namespace tovi
