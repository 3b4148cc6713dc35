// SPDX-License-Identifier: MIT
#include "Json.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace tovi {

QJsonValue decodeJson(const QByteArray &json)
{
    const bool hasMark = json.startsWith("\xEF\xBB\xBF");
    // Qt's parser takes no single value; as the one element of an array every value is welcome.
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson('[' + (hasMark ? json.mid(3) : json) + ']', &error);
    if (error.error == QJsonParseError::DeepNesting)
        throw JSONError(JSONError::Kind::tooDeep);
    if (error.error != QJsonParseError::NoError || document.array().size() != 1)
        throw JSONError(JSONError::Kind::invalid);
    return document.array().first();
}

std::optional<QList<QJsonObject>> arrayOfObjects(const QJsonValue &value)
{
    if (!value.isArray())
        return std::nullopt;
    QList<QJsonObject> objects;
    const QJsonArray array = value.toArray();
    for (const QJsonValue element : array) {
        if (!element.isObject())
            return std::nullopt;
        objects << element.toObject();
    }
    return objects;
}

std::optional<QString> textValue(const QJsonValue &value)
{
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

} // namespace tovi
