// SPDX-License-Identifier: MIT
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Endpoints.h"
#include "Keychain.h"
#include "Localization.h"
#include "Settings.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

const QString service = QStringLiteral("com.brevoll.tovi");
const QString providersKey = QStringLiteral("providers");

ProviderConfig engine(const char *name, ProviderKind kind = ProviderKind::openAI)
{
    ProviderConfig config;
    config.id = QUuid::createUuid();
    config.name = QString::fromUtf8(name);
    config.kind = kind;
    return config;
}

struct SettingsTest : testing::Test
{
    TestPlatform platform;
    QJsonObject &values = platform.userDefaults().values;
    TestSecretStore &secrets = platform.secretStore();

    Settings &settings() { return Settings::shared(); }

    void storeEngines(const QList<ProviderConfig> &list)
    {
        values.insert(providersKey, *ProviderConfig::listToJson(list));
    }
    void storeKey(const QString &account, const char *key) { secrets.items[{service, account}] = key; }
    std::optional<QByteArray> storedKey(const QUuid &id)
    {
        const std::scoped_lock lock(secrets.mutex);
        const auto it = secrets.items.find({service, Keychain::providerAccount(id)});
        return it == secrets.items.end() ? std::nullopt : std::optional(it->second);
    }
    bool waitForKey(const QUuid &id)
    {
        bool done = false;
        [](Settings &settings, QUuid id, bool &done) -> QCoro::Task<> {
            co_await settings.keyLoaded(id);
            done = true;
        }(settings(), id, done);
        return waitUntil([&done] { return done; });
    }
    void setKey(const QUuid &id, const char *key)
    {
        QList<ProviderConfig> list = settings().providers;
        for (ProviderConfig &config : list) {
            if (config.id == id)
                config.apiKey = QLatin1String(key);
        }
        settings().providers = list;
    }
    QStringList names()
    {
        QStringList result;
        for (const ProviderConfig &config : settings().providers.get())
            result << config.name;
        return result;
    }
    int writes(const QString &key) { return static_cast<int>(platform.userDefaults().writes.count(key)); }
};

/// What a start without any stored value shows.
void expectDefaults(Settings &s)
{
    EXPECT_EQ(s.targetLanguage.get(), QStringLiteral("zh-CN"));
    EXPECT_EQ(s.sourceLanguage.get(), QStringLiteral("auto"));
    EXPECT_TRUE(s.enableDoubleCopy && s.enableDictionary && s.browserScriptEnabled && s.clipboardFallback &&
                s.preferMenuBarCopy && s.restoreClipboard && s.ocrEnabled && s.ocrRegionSelection);
    EXPECT_EQ(s.captureHotKey->displayString() + s.ocrHotKey->displayString() +
                  s.inputHotKey->displayString(),
              QStringLiteral("⌥D⌥S⌥T"));
    EXPECT_EQ(s.resultPanelWidth, 380.0);
    EXPECT_EQ(s.resultFontSize, 15.0);
    EXPECT_EQ(s.requestTimeout, 20.0);
    EXPECT_EQ(s.windowPosition.get(), QStringLiteral("followMouse"));
    EXPECT_EQ(s.appearance.get(), QStringLiteral("system"));
    EXPECT_FALSE(s.launchAtLogin);
    EXPECT_EQ(s.currentProvider().kind, ProviderKind::google);
}

TEST_F(SettingsTest, FirstStartHasDefaultsAndTheThreeEngines)
{
    expectDefaults(settings());
    EXPECT_THAT(names(),
                ElementsAre(QStringLiteral("Google"), QStringLiteral("Apple"), QStringLiteral("OpenAI")));
    const ProviderConfig openAI = settings().providers->last();
    EXPECT_EQ(openAI.baseURL, Endpoints::openAIBaseURL());
    EXPECT_TRUE(openAI.fallbackToGoogle && !openAI.isBuiltIn);
    EXPECT_EQ(values[QStringLiteral("currentProviderID")].toString(),
              canonicalText(settings().providers->first().id));
    EXPECT_EQ(values.size(), 2) << "fallbacks are not stored";
}

TEST_F(SettingsTest, ValuesOfAWrongTypeReadAsTheirDefaults)
{
    const QStringList keys =
        QStringLiteral(
            "targetLanguage sourceLanguage enableDoubleCopy captureHotKey ocrHotKey inputHotKey "
            "enableDictionary resultPanelWidth resultFontSize windowPosition appearance requestTimeout "
            "browserScriptEnabled clipboardFallback preferMenuBarCopy restoreClipboard ocrEnabled "
            "ocrRegionSelection currentProviderID providers")
            .split(u' ');
    for (const QJsonValue &wrong : {QJsonValue(), QJsonValue(QJsonObject{})}) {
        for (const QString &key : keys)
            values.insert(key, wrong);
        Settings fresh;
        expectDefaults(fresh);
    }
    EXPECT_EQ(values.value(QStringLiteral("providers.unreadable")), QJsonValue(QJsonObject()))
        << "engines that were not understood are lost";
}

TEST_F(SettingsTest, EveryAssignmentStoresAndAnnouncesEvenAnEqualOne)
{
    int announced = 0;
    int hotKeys = 0;
    auto changes = settings().onWillChange([&] { ++announced; });
    auto posts = platform.notificationCenter().observe(Settings::hotKeysChangedNotification,
                                                       [&](const QVariantMap &) { ++hotKeys; });
    settings().ocrEnabled = true;
    settings().requestTimeout = -1e300;
    settings().windowPosition = QStringLiteral("somewhere new");
    for (const char *text : {"light", "dark", "sepia"})
        settings().appearance = QLatin1String(text);
    settings().resetHotKeys();
    EXPECT_EQ(announced, 9);
    EXPECT_THAT(platform.application().appearances, ElementsAre(1, 2, 0)) << "unknown follows the system";
    EXPECT_EQ(hotKeys, 3);
    EXPECT_EQ(writes(QStringLiteral("ocrEnabled")), 1);

    Settings again;
    EXPECT_EQ(again.requestTimeout, -1e300);
    EXPECT_EQ(again.windowPosition.get(), QStringLiteral("somewhere new")) << "unknown texts survive";
}

TEST_F(SettingsTest, LoginItemFailureSnapsBackAndApprovalIsExplained)
{
    TestLoginItem &item = platform.loginItem();
    const Localization &texts = Localization::shared();
    item.error = QStringLiteral("no room");
    settings().launchAtLogin = true;
    EXPECT_FALSE(settings().launchAtLogin);
    EXPECT_EQ(settings().launchAtLoginMessage.get(),
              texts.t(Str::loginItemFailed) + QStringLiteral(" · no room"));
    EXPECT_EQ(item.registrations, 1);
    EXPECT_EQ(item.unregistrations, 0);

    item.error.reset();
    item.afterRegistration = LoginItem::Status::RequiresApproval;
    settings().launchAtLogin = true;
    EXPECT_TRUE(settings().launchAtLogin);
    EXPECT_EQ(settings().launchAtLoginMessage.get(), texts.t(Str::loginItemRequiresApproval));
    item.current = LoginItem::Status::Enabled;
    settings().launchAtLogin = false;
    EXPECT_EQ(item.current, LoginItem::Status::NotRegistered);
    EXPECT_EQ(settings().launchAtLoginMessage.get(), std::nullopt);
    EXPECT_FALSE(values.contains(QStringLiteral("launchAtLogin")));
}

TEST_F(SettingsTest, MigratesTheSingleEngineOfEarlyVersions)
{
    values = {{QStringLiteral("translationProvider"), QStringLiteral("openai")},
              {QStringLiteral("openaiModel"), QStringLiteral("tiny")},
              {QStringLiteral("openaiTemperature"), QStringLiteral("0.9")},
              {QStringLiteral("fallbackToGoogle"), false}};
    storeKey(Keychain::legacyAccount, "old");
    const ProviderConfig openAI = settings().currentProvider();
    EXPECT_EQ(openAI.model, QStringLiteral("tiny"));
    EXPECT_EQ(openAI.temperature, 0.2);
    EXPECT_FALSE(openAI.fallbackToGoogle);
    ASSERT_TRUE(waitForKey(openAI.id));
    EXPECT_EQ(settings().currentProvider().apiKey, QStringLiteral("old"));
    EXPECT_TRUE(waitUntil([&] { return storedKey(openAI.id) == "old"; }));
    EXPECT_EQ(secrets.items.size(), 2u) << "the old item stays";
}

TEST_F(SettingsTest, BuiltInEnginesAlwaysExist)
{
    const auto a = engine("A");
    storeEngines({a, engine("G1", ProviderKind::google), engine("G2", ProviderKind::google), engine("B")});
    values.insert(QStringLiteral("currentProviderID"), canonicalText(QUuid::createUuid()));
    const QList<ProviderConfig> &list = settings().providers;
    EXPECT_EQ(names().join(u' '), QStringLiteral("A G1 Apple G2 B"));
    EXPECT_EQ(list[1].isBuiltIn, true);
    EXPECT_EQ(list[3].isBuiltIn, std::nullopt);
    EXPECT_EQ(settings().currentProviderID.get(), a.id) << "an unknown choice is the first engine";
    EXPECT_EQ(values[providersKey].toArray().size(), 5) << "stored at once";

    storeEngines({a});
    Settings second;
    EXPECT_EQ(second.providers->first().name, QStringLiteral("Google"));
    EXPECT_EQ(second.providers->size(), 3);
}

TEST_F(SettingsTest, RemovingSelectsTheFirstAndSparesBuiltIns)
{
    storeEngines(
        {engine("Google", ProviderKind::google), engine("Apple", ProviderKind::apple), engine("Mine")});
    const QUuid mine = settings().providers->last().id;
    storeKey(Keychain::providerAccount(mine), "k");
    settings().currentProviderID = mine;
    settings().removeProvider(settings().providers->first().id);
    EXPECT_EQ(settings().providers->size(), 3);
    settings().removeProvider(mine);
    EXPECT_EQ(names().join(u' '), QStringLiteral("Google Apple"));
    EXPECT_EQ(settings().currentProvider().name, QStringLiteral("Google"));
    settings().flush();
    EXPECT_FALSE(storedKey(mine));
    EXPECT_EQ(values[providersKey].toArray().size(), 2);
    settings().providers = QList<ProviderConfig>{};
    EXPECT_EQ(settings().currentProvider().name, QStringLiteral("Google"));
}

TEST_F(SettingsTest, TheEngineListIsStoredOnceAfterAPause)
{
    settings();
    const int before = writes(providersKey);
    for (const char *name : {"one", "two", "three"}) {
        settings().addProvider(engine(name));
        platform.clock().advance(300ms);
    }
    EXPECT_EQ(writes(providersKey), before);
    platform.clock().advance(100ms);
    EXPECT_EQ(writes(providersKey), before + 1);
    EXPECT_EQ(values[providersKey].toArray().size(), 6);

    settings().addProvider(engine("four"));
    settings().flush();
    EXPECT_EQ(writes(providersKey), before + 2) << "quitting does not wait for the pause";
    platform.clock().advance(1s);
    EXPECT_EQ(writes(providersKey), before + 2);

    ProviderConfig endless = engine("endless");
    endless.temperature = std::numeric_limits<double>::quiet_NaN();
    settings().addProvider(endless);
    settings().flush();
    EXPECT_EQ(writes(providersKey), before + 2) << "what has no stored form leaves the last list";
}

TEST_F(SettingsTest, KeysArriveAnnouncedAndAreNoEdit)
{
    const auto a = engine("A");
    storeEngines({a});
    storeKey(Keychain::providerAccount(a.id), "stored");
    const int before = (settings(), writes(providersKey));
    int announced = 0;
    auto changes = settings().onWillChange([&] { ++announced; });
    ASSERT_TRUE(waitForKey(a.id));
    EXPECT_EQ(settings().provider(a.id)->apiKey, QStringLiteral("stored"));
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(platform.clock().pendingActions(), 0);

    settings().resetSystemPrompt(a.id);
    settings().flush();
    EXPECT_EQ(writes(providersKey), before + 1);
    EXPECT_FALSE(secrets.calls.join(u' ').contains(QStringLiteral("add")));
    for (const char *key : {"edited", ""}) {
        setKey(a.id, key);
        settings().flush();
        EXPECT_EQ(storedKey(a.id).value_or(QByteArray()), key);
    }
    EXPECT_FALSE(storedKey(a.id)) << "the empty key is no item";
}

TEST_F(SettingsTest, ALockedKeyringLosesNothing)
{
    const auto a = engine("A");
    const auto b = engine("B");
    storeEngines({a, b});
    storeKey(Keychain::providerAccount(a.id), "kept");
    secrets.unavailable = true;
    ASSERT_TRUE(waitForKey(a.id));
    settings().resetSystemPrompt(a.id);
    setKey(b.id, "typed while locked");
    settings().flush();
    EXPECT_EQ(storedKey(a.id), "kept");

    {
        const std::scoped_lock lock(secrets.mutex);
        secrets.unavailable = false;
    }
    ASSERT_TRUE(waitForKey(a.id)) << "tried again when it is needed";
    EXPECT_EQ(settings().provider(a.id)->apiKey, QStringLiteral("kept"));
    EXPECT_EQ(settings().provider(b.id)->apiKey, QStringLiteral("typed while locked"));
    settings().resetSystemPrompt(a.id);
    settings().flush();
    EXPECT_EQ(storedKey(b.id), "typed while locked") << "a failed write is tried with the next save";
}

TEST_F(SettingsTest, AKeyTypedBeforeTheOldOneArrivesWins)
{
    const auto a = engine("A");
    storeEngines({a});
    storeKey(Keychain::providerAccount(a.id), "old");
    {
        const std::scoped_lock stall(secrets.mutex);
        settings();
        setKey(a.id, "new");
    }
    settings().flush();
    drainMainQueue();
    EXPECT_EQ(settings().provider(a.id)->apiKey, QStringLiteral("new"));
    EXPECT_EQ(storedKey(a.id), "new");
}

} // namespace
} // namespace tovi
