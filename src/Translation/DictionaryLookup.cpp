// SPDX-License-Identifier: MIT
#include "Translation/DictionaryLookup.h"

#include <QJsonArray>
#include <QRegularExpression>

#include "Endpoints.h"
#include "Json.h"
#include "Text.h"

namespace tovi {

namespace {

constexpr qsizetype longestAnswer = 256 * 1024;
constexpr int longestWord = 32; // user-perceived characters
constexpr int mostWords = 2;
constexpr int mostMeanings = 3;
constexpr int mostDefinitions = 2;

std::optional<QString> phoneticOf(const QJsonObject &entry)
{
    if (const auto phonetic = textValue(entry.value(QLatin1String("phonetic"))))
        return phonetic;
    const QJsonArray phonetics = entry.value(QLatin1String("phonetics")).toArray();
    for (const QJsonValue phonetic : phonetics) {
        if (const auto text = textValue(phonetic.toObject().value(QLatin1String("text"))))
            return text;
    }
    return std::nullopt;
}

QStringList linesOf(const QJsonObject &meaning)
{
    const QString partOfSpeech = meaning.value(QLatin1String("partOfSpeech")).toString();
    const QString prefix = partOfSpeech.isEmpty() ? QString() : u'[' + partOfSpeech + QStringLiteral("] ");
    const QJsonArray definitions = meaning.value(QLatin1String("definitions")).toArray();
    QStringList lines;
    for (int i = 0; i < mostDefinitions; ++i) {
        if (const auto text = textValue(definitions.at(i).toObject().value(QLatin1String("definition"))))
            lines << prefix + *text;
    }
    return lines;
}

} // namespace

DictionaryLookup::DictionaryLookup(URLSession &session, const QString &text)
    : m_word(wordToLookUp(text))
{
    if (!m_word)
        return;
    // Of a word's characters only the space needs an escape; the rest may stand in a path.
    const QUrl url = QUrl::fromEncoded(
        Endpoints::dictionaryBaseURL().toUtf8() + QUrl::toPercentEncoding(*m_word, "'"), QUrl::StrictMode);
    if (url.isValid() && !url.host().isEmpty())
        m_task = session.start({.url = url});
}

QCoro::Task<std::optional<DictionaryEntry>> DictionaryLookup::entry()
{
    if (!m_task)
        co_return std::nullopt;
    try {
        const auto answering = m_task->response();
        const URLResponse response = co_await answering;
        if (response.statusCode != 200)
            co_return std::nullopt;
        auto reading = m_task->readAll(longestAnswer);
        const QByteArray body = co_await reading;
        co_return parse(body, *m_word);
    } catch (const std::exception &) {
        co_return std::nullopt;
    }
}

std::optional<QString> DictionaryLookup::wordToLookUp(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A[A-Za-z][A-Za-z'\\- ]*\\z"));
    const QString word = text.trimmed();
    if (firstCharacters(word, longestWord).size() < word.size() || !pattern.match(word).hasMatch() ||
        word.split(QLatin1Char(' '), Qt::SkipEmptyParts).size() > mostWords)
        return std::nullopt;
    return word;
}

std::optional<DictionaryEntry> DictionaryLookup::parse(const QByteArray &body, const QString &word)
{
    const auto entries = arrayOfObjects(decodeJson(body));
    if (!entries || entries->isEmpty())
        return std::nullopt;
    const QJsonObject &first = entries->first();
    const auto meanings = arrayOfObjects(first.value(QLatin1String("meanings")));
    if (!meanings)
        return std::nullopt;
    DictionaryEntry entry{word, phoneticOf(first), {}};
    for (const QJsonObject &meaning : meanings->first(std::min(meanings->size(), qsizetype(mostMeanings))))
        entry.meanings << linesOf(meaning);
    return entry.meanings.isEmpty() ? std::nullopt : std::optional(entry);
}

} // namespace tovi
