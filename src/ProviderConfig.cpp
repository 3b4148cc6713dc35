// SPDX-License-Identifier: MIT
#include "ProviderConfig.h"

#include <cmath>

namespace tovi {

namespace {

// Members of the stored form.
const QLatin1String idKey("id");
const QLatin1String nameKey("name");
const QLatin1String kindKey("kind");
const QLatin1String baseURLKey("baseURL");
const QLatin1String modelKey("model");
const QLatin1String temperatureKey("temperature");
const QLatin1String systemPromptKey("systemPrompt");
const QLatin1String fallbackKey("fallbackToGoogle");
const QLatin1String iconNameKey("iconName");
const QLatin1String isBuiltInKey("isBuiltIn");

struct KindRow
{
    ProviderKind kind;
    QLatin1String rawValue;
    QLatin1String displayName;
    QLatin1String icon;
};

constexpr KindRow kindTable[] = {
    {ProviderKind::google, QLatin1String("google"), QLatin1String("Google"), QLatin1String("logo:google")},
    {ProviderKind::openAI, QLatin1String("openAI"), QLatin1String("OpenAI"), QLatin1String("cloud")},
    {ProviderKind::apple, QLatin1String("apple"), QLatin1String("Offline"), QLatin1String("logo:apple")},
};

const KindRow &row(ProviderKind kind)
{
    return kindTable[static_cast<int>(kind)];
}

bool isAbsent(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

} // namespace

namespace ProviderKinds {

const QList<ProviderKind> &all()
{
    static const QList<ProviderKind> kinds{ProviderKind::google, ProviderKind::openAI, ProviderKind::apple};
    return kinds;
}

QString rawValue(ProviderKind kind)
{
    return row(kind).rawValue;
}

std::optional<ProviderKind> fromRawValue(const QString &rawValue)
{
    for (const KindRow &entry : kindTable) {
        if (entry.rawValue == rawValue)
            return entry.kind;
    }
    return std::nullopt;
}

} // namespace ProviderKinds

QString canonicalText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> uuidFromCanonicalText(const QString &text)
{
    const QUuid id = QUuid::fromString(text);
    // The toolkit also reads braces, and answers null for nonsense.
    if (canonicalText(id).compare(text, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return id;
}

QString ProviderConfig::displayName() const
{
    if (const QString trimmed = name.trimmed(); !trimmed.isEmpty())
        return trimmed;
    if (kind == ProviderKind::openAI && !model.isEmpty())
        return model;
    return row(kind).displayName;
}

QString ProviderConfig::iconIdentifier() const
{
    return iconName && !iconName->isEmpty() ? *iconName : QString(row(kind).icon);
}

QJsonObject ProviderConfig::toJson() const
{
    QJsonObject json{
        {idKey, canonicalText(id)},
        {nameKey, name},
        {kindKey, ProviderKinds::rawValue(kind)},
        {baseURLKey, baseURL},
        {modelKey, model},
        {temperatureKey, temperature},
        {systemPromptKey, systemPrompt},
        {fallbackKey, fallbackToGoogle},
    };
    if (iconName)
        json.insert(iconNameKey, *iconName);
    if (isBuiltIn)
        json.insert(isBuiltInKey, *isBuiltIn);
    return json;
}

std::optional<ProviderConfig> ProviderConfig::fromJson(const QJsonValue &json)
{
    const QJsonObject object = json.toObject();
    for (const QLatin1String &key : {idKey, nameKey, kindKey, baseURLKey, modelKey, systemPromptKey}) {
        if (!object.value(key).isString())
            return std::nullopt;
    }
    const auto id = uuidFromCanonicalText(object.value(idKey).toString());
    const auto kind = ProviderKinds::fromRawValue(object.value(kindKey).toString());
    const QJsonValue icon = object.value(iconNameKey);
    const QJsonValue builtIn = object.value(isBuiltInKey);
    if (!id || !kind || !object.value(temperatureKey).isDouble() || !object.value(fallbackKey).isBool() ||
        !(icon.isString() || isAbsent(icon)) || !(builtIn.isBool() || isAbsent(builtIn))) {
        return std::nullopt;
    }
    return ProviderConfig{
        .id = *id,
        .name = object.value(nameKey).toString(),
        .kind = *kind,
        .baseURL = object.value(baseURLKey).toString(),
        .model = object.value(modelKey).toString(),
        .temperature = object.value(temperatureKey).toDouble(),
        .systemPrompt = object.value(systemPromptKey).toString(),
        .fallbackToGoogle = object.value(fallbackKey).toBool(),
        .iconName = icon.isString() ? std::optional(icon.toString()) : std::nullopt,
        .isBuiltIn = builtIn.isBool() ? std::optional(builtIn.toBool()) : std::nullopt,
        .apiKey = {},
    };
}

std::optional<QList<ProviderConfig>> ProviderConfig::listFromJson(const QJsonValue &json)
{
    if (!json.isArray())
        return std::nullopt;
    QList<ProviderConfig> list;
    for (const QJsonValue &element : json.toArray()) {
        const auto config = fromJson(element);
        if (!config)
            return std::nullopt;
        list << *config;
    }
    return list;
}

std::optional<QJsonArray> ProviderConfig::listToJson(const QList<ProviderConfig> &list)
{
    QJsonArray array;
    for (const ProviderConfig &config : list) {
        if (!std::isfinite(config.temperature))
            return std::nullopt;
        array << config.toJson();
    }
    return array;
}

QString ProviderConfig::defaultSystemPrompt()
{
    return QStringLiteral(
        "You are a professional translation engine. Translate the user's text into {{target}}.\n"
        "\n"
        "Rules:\n"
        "1. Output only the translation — no explanations, no quotes, no extra text.\n"
        "2. Preserve the original line breaks, punctuation and formatting.\n"
        "3. Keep the original tone (casual / formal / technical, etc.).\n"
        "4. If the input is a single word or phrase, give the most fitting and common meaning.");
}

ProviderConfig ProviderConfig::makeGoogle()
{
    ProviderConfig config;
    config.id = QUuid::createUuid();
    config.name = QStringLiteral("Google");
    config.kind = ProviderKind::google;
    config.systemPrompt = defaultSystemPrompt();
    config.isBuiltIn = true;
    return config;
}

ProviderConfig ProviderConfig::makeApple()
{
    ProviderConfig config = makeGoogle();
    config.name = QStringLiteral("Apple");
    config.kind = ProviderKind::apple;
    config.fallbackToGoogle = true;
    return config;
}

} // namespace tovi
