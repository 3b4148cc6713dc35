// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace tovi {

/// The application's persistent preferences: one JSON object of keys and values. Reads of absent or
/// wrongly typed keys answer the registered fallback, if there is one of the asked type. Main thread.
class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    /// Fallback values for reads; never stored.
    void registerDefaults(const QJsonObject &fallbacks);

    std::optional<QString> string(const QString &key) const;
    /// Booleans and numbers do not pass as each other.
    std::optional<bool> boolean(const QString &key) const;
    /// Always finite.
    std::optional<double> number(const QString &key) const;
    /// A stored JSON document (object or array), as itself.
    std::optional<QJsonValue> document(const QString &key) const;

    /// Stores at once. A failed write is logged and tried again with the next one.
    void set(const QString &key, const QJsonValue &value) { write(key, value); }

protected:
    /// The stored value; undefined when absent.
    virtual QJsonValue stored(const QString &key) const = 0;
    virtual void write(const QString &key, const QJsonValue &value) = 0;

private:
    QJsonObject m_fallbacks;
};

} // namespace tovi
