// SPDX-License-Identifier: MIT
#include "Stored.h"

#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"
#include "ProviderConfig.h"

namespace tovi::detail {

namespace {

UserDefaults &defaults()
{
    return Platform::current().userDefaults();
}

UserDefaults &withFallback(const QString &key, const QJsonValue &fallback)
{
    defaults().registerDefaults({{key, fallback}});
    return defaults();
}

} // namespace

QString loadStored(const QString &key, const QString &fallback)
{
    return withFallback(key, fallback).string(key).value_or(fallback);
}

bool loadStored(const QString &key, bool fallback)
{
    return withFallback(key, fallback).boolean(key).value_or(fallback);
}

double loadStored(const QString &key, double fallback)
{
    return withFallback(key, fallback).number(key).value_or(fallback);
}

HotKey loadStored(const QString &key, const HotKey &fallback)
{
    return HotKey::fromJson(defaults().document(key).value_or(QJsonValue())).value_or(fallback);
}

QUuid loadStored(const QString &key, const QUuid &fallback)
{
    return uuidFromCanonicalText(defaults().string(key).value_or(QString())).value_or(fallback);
}

void store(const QString &key, const QString &value)
{
    defaults().set(key, value);
}

void store(const QString &key, bool value)
{
    defaults().set(key, value);
}

void store(const QString &key, double value)
{
    defaults().set(key, value);
}

void store(const QString &key, const HotKey &value)
{
    defaults().set(key, value.toJson());
}

void store(const QString &key, const QUuid &value)
{
    defaults().set(key, canonicalText(value));
}

} // namespace tovi::detail
