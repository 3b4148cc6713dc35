// SPDX-License-Identifier: MIT
#include "Platform/UserDefaults.h"

#include <cmath>

namespace tovi {

namespace {

template <class Accept>
QJsonValue firstAccepted(const QJsonValue &stored, const QJsonValue &fallback, Accept accept)
{
    if (accept(stored))
        return stored;
    return accept(fallback) ? fallback : QJsonValue(QJsonValue::Undefined);
}

} // namespace

void UserDefaults::registerDefaults(const QJsonObject &fallbacks)
{
    for (auto it = fallbacks.begin(); it != fallbacks.end(); ++it)
        m_fallbacks.insert(it.key(), it.value());
}

std::optional<QString> UserDefaults::string(const QString &key) const
{
    const auto value =
        firstAccepted(stored(key), m_fallbacks.value(key), [](const QJsonValue &v) { return v.isString(); });
    return value.isUndefined() ? std::nullopt : std::optional(value.toString());
}

std::optional<bool> UserDefaults::boolean(const QString &key) const
{
    const auto value =
        firstAccepted(stored(key), m_fallbacks.value(key), [](const QJsonValue &v) { return v.isBool(); });
    return value.isUndefined() ? std::nullopt : std::optional(value.toBool());
}

std::optional<double> UserDefaults::number(const QString &key) const
{
    const auto value = firstAccepted(stored(key), m_fallbacks.value(key), [](const QJsonValue &v) {
        return v.isDouble() && std::isfinite(v.toDouble());
    });
    return value.isUndefined() ? std::nullopt : std::optional(value.toDouble());
}

std::optional<QJsonValue> UserDefaults::document(const QString &key) const
{
    const auto value = firstAccepted(stored(key), m_fallbacks.value(key),
                                     [](const QJsonValue &v) { return v.isArray() || v.isObject(); });
    return value.isUndefined() ? std::nullopt : std::optional(value);
}

} // namespace tovi
