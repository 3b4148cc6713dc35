// SPDX-License-Identifier: MIT
#pragma once

#include <exception>
#include <optional>

#include <QString>
#include <QStringList>

namespace tovi {

/// What the English dictionary says about a word.
struct DictionaryEntry
{
    QString word;
    std::optional<QString> phonetic;
    QStringList meanings; ///< display lines, never empty

    bool operator==(const DictionaryEntry &) const = default;
};

struct TranslationResult
{
    QString translatedText;                    ///< never empty when an engine returns it
    std::optional<QString> detectedSource;     ///< language code, where the engine tells
    std::optional<DictionaryEntry> dictionary; ///< filled by the translator
    std::optional<QString> providerName;       ///< the engine that produced the text
    std::optional<QString> note;               ///< a remark to show beside the translation

    bool operator==(const TranslationResult &) const = default;
};

/// The only error that engines and the translator throw.
class TranslationError : public std::exception
{
public:
    enum class Kind { network, missingConfiguration, parse, empty };

    /// The message is complete and already localized.
    static TranslationError network(const QString &message) { return {Kind::network, message}; }
    static TranslationError missingConfiguration(const QString &message)
    {
        return {Kind::missingConfiguration, message};
    }
    static TranslationError parse() { return {Kind::parse, {}}; }
    static TranslationError empty() { return {Kind::empty, {}}; }

    Kind kind() const { return m_kind; }
    /// What the user sees; for parse and empty in the interface language of the moment.
    QString localizedDescription() const;
    const char *what() const noexcept override { return "TranslationError"; }

    bool operator==(const TranslationError &other) const
    {
        return m_kind == other.m_kind && m_message == other.m_message;
    }

private:
    TranslationError(Kind kind, const QString &message)
        : m_kind(kind)
        , m_message(message)
    {}

    Kind m_kind;
    QString m_message;
};

} // namespace tovi
