// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

namespace tovi {

enum class ProviderKind { google, openAI, apple };

namespace ProviderKinds {
const QList<ProviderKind> &all();
QString rawValue(ProviderKind kind);
std::optional<ProviderKind> fromRawValue(const QString &rawValue);
} // namespace ProviderKinds

/// One translation engine that the user can choose.
struct ProviderConfig
{
    QUuid id;
    QString name; ///< may be empty
    ProviderKind kind = ProviderKind::google;
    QString baseURL;
    QString model;
    double temperature = 0.2;
    QString systemPrompt;
    bool fallbackToGoogle = false;
    std::optional<QString> iconName;
    std::optional<bool> isBuiltIn;
    QString apiKey; ///< in memory only, never in the JSON

    bool operator==(const ProviderConfig &) const = default;

    QString displayName() const;
    QString iconIdentifier() const;

    QJsonObject toJson() const;
    static std::optional<ProviderConfig> fromJson(const QJsonValue &json);
    /// The whole array, or nothing when one element does not decode.
    static std::optional<QList<ProviderConfig>> listFromJson(const QJsonValue &json);
    /// None when a number in it has no JSON form.
    static std::optional<QJsonArray> listToJson(const QList<ProviderConfig> &list);

    static QString defaultSystemPrompt();
    static ProviderConfig makeGoogle();
    static ProviderConfig makeApple();
};

/// The canonical upper-case text of an identifier, without braces.
QString canonicalText(const QUuid &id);
/// Reads the canonical form, in upper or lower case.
std::optional<QUuid> uuidFromCanonicalText(const QString &text);

} // namespace tovi
