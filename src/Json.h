// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <optional>

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>

namespace tovi {

class JSONError : public std::exception
{
public:
    enum class Kind { invalid, tooDeep, notSerializable };

    explicit JSONError(Kind kind)
        : m_kind(kind)
    {}
    Kind kind() const { return m_kind; }
    const char *what() const noexcept override { return "JSONError"; }

private:
    Kind m_kind;
};

/// Any JSON value, also a single one outside an array or object; throws JSONError. A byte order mark before
/// it does not matter.
QJsonValue decodeJson(const QByteArray &json);

/// The elements when the value is an array of nothing but objects.
std::optional<QList<QJsonObject>> arrayOfObjects(const QJsonValue &value);

/// The text when the value is one.
std::optional<QString> textValue(const QJsonValue &value);

} // namespace tovi
