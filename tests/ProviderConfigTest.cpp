// SPDX-License-Identifier: MIT
#include <limits>

#include <gtest/gtest.h>

#include "ProviderConfig.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

ProviderConfig sample()
{
    ProviderConfig config;
    config.id = QUuid::createUuid();
    config.name = QStringLiteral("Mine \"ü\"");
    config.kind = ProviderKind::openAI;
    config.temperature = 0.7;
    config.systemPrompt = ProviderConfig::defaultSystemPrompt();
    config.fallbackToGoogle = true;
    return config;
}

TEST(ProviderConfig, NamesAndIconsFallBackByKind)
{
    const struct
    {
        const char *name;
        ProviderKind kind;
        const char *model;
        const char *shown;
        const char *icon;
    } cases[] = {
        {" Work\n", ProviderKind::google, "", "Work", "logo:google"},
        {"   ", ProviderKind::openAI, "gpt-4o-mini", "gpt-4o-mini", "cloud"},
        {"", ProviderKind::openAI, "", "OpenAI", "cloud"},
        {"", ProviderKind::apple, "ignored", "Offline", "logo:apple"},
    };
    for (const auto &row : cases) {
        ProviderConfig config;
        config.name = QString::fromUtf8(row.name);
        config.kind = row.kind;
        config.model = QString::fromUtf8(row.model);
        config.iconName = QString();
        EXPECT_EQ(config.displayName(), QString::fromUtf8(row.shown));
        EXPECT_EQ(config.iconIdentifier(), QString::fromUtf8(row.icon));
    }
}

TEST(ProviderConfig, RoundTripsWithoutItsKey)
{
    ProviderConfig config = sample();
    EXPECT_EQ(ProviderConfig::fromJson(config.toJson()), config) << "without the optional members";
    config.apiKey = QStringLiteral("secret");
    config.iconName = QStringLiteral("star");
    config.isBuiltIn = false;
    const QJsonObject json = config.toJson();
    EXPECT_FALSE(json.contains(QStringLiteral("apiKey")));
    EXPECT_EQ(json[QStringLiteral("id")].toString(), config.id.toString(QUuid::WithoutBraces).toUpper());
    config.apiKey.clear();
    EXPECT_EQ(ProviderConfig::fromJson(json), config);
}

TEST(ProviderConfig, OneBadMemberFailsTheWholeList)
{
    const QJsonObject good = sample().toJson();
    const auto decodes = [&good](const char *key, const QJsonValue &value) {
        QJsonObject json = good;
        json.insert(QLatin1String(key), value);
        return ProviderConfig::listFromJson(QJsonArray{good, json}).has_value();
    };
    EXPECT_TRUE(decodes("isBuiltIn", QJsonValue()));
    EXPECT_TRUE(decodes("id", good[QStringLiteral("id")].toString().toLower()));
    EXPECT_TRUE(decodes("somethingNew", 1));
    for (const QString &key : good.keys())
        EXPECT_FALSE(decodes(key.toLatin1().constData(), QJsonValue::Undefined)) << key.toStdString();
    EXPECT_FALSE(decodes("id", QStringLiteral("{12345678-1234-1234-1234-123456789abc}")));
    EXPECT_FALSE(decodes("kind", QStringLiteral("bing")));
    EXPECT_FALSE(decodes("temperature", true));
    EXPECT_FALSE(decodes("fallbackToGoogle", 1));
    EXPECT_FALSE(decodes("isBuiltIn", QStringLiteral("true")));
    EXPECT_FALSE(ProviderConfig::listFromJson(QJsonObject{}));

    ProviderConfig endless = sample();
    endless.temperature = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(ProviderConfig::listToJson({endless}));
}

} // namespace
} // namespace tovi
