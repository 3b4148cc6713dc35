// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractLineReader.h"

#include <algorithm>

namespace tovi {

namespace {

constexpr double sure = 0.85;      ///< a reading that needs no second one
constexpr double doubtful = 0.7;   ///< a word that may be none of the language
constexpr double clearLead = 0.07; ///< before the less likely of the two Chinese scripts is believed
/// The data for Traditional Chinese read Simplified too, and sometimes more surely, but write it their way.
constexpr double traditionalHandicap = 0.03;
constexpr int nearby = 12; ///< pixels of a line's picture that readings differ about where a word is
const QString traditionalChinese = QStringLiteral("chi_tra");
const QString latin = QStringLiteral("eng");

bool isIdeographic(QChar c)
{
    const ushort code = c.unicode();
    return (code >= 0x3000 && code <= 0x30ff) || (code >= 0x3400 && code <= 0x9fff) ||
           (code >= 0xf900 && code <= 0xfaff) || code >= 0xff00;
}

bool isHangul(QChar c)
{
    return (c.unicode() >= 0xac00 && c.unicode() <= 0xd7a3) ||
           (c.unicode() >= 0x3131 && c.unicode() <= 0x318e);
}

bool hasWideLetters(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return isIdeographic(c) || isHangul(c); });
}

bool isChinese(const QString &language)
{
    return language.startsWith(QLatin1String("chi_"));
}

/// Neighbouring words as one with the mean of their confidences.
TesseractReading::Word joined(const QList<TesseractReading::Word> &words)
{
    TesseractReading part;
    part.words = words;
    return {.text = part.text(),
            .confidence = part.confidence(),
            .begin = words.first().begin,
            .end = words.last().end};
}

QChar wideForm(QChar c)
{
    static constexpr QStringView narrow = u",!?:;()";
    return narrow.contains(c) ? QChar(c.unicode() + 0xfee0) : c;
}

/// The Korean data read Latin words as syllables, but badly.
bool mayBeLatin(const TesseractReading::Word &word)
{
    return !hasWideLetters(word.text) || word.confidence < doubtful;
}

bool hasLatinWords(const TesseractReading &reading)
{
    return std::any_of(reading.words.begin(), reading.words.end(), [](const TesseractReading::Word &word) {
        return mayBeLatin(word) &&
               std::any_of(word.text.begin(), word.text.end(), [](QChar c) { return c.isLetterOrNumber(); });
    });
}

/// The words of the English reading where they stand for Latin words of the other and are surer.
TesseractReading withWordsOf(const TesseractReading &english, const TesseractReading &reading)
{
    TesseractReading merged{.language = reading.language, .words = {}};
    for (qsizetype i = 0; i < reading.words.size();) {
        qsizetype end = i;
        while (end < reading.words.size() && mayBeLatin(reading.words[end]))
            ++end;
        if (end == i) {
            merged.words << reading.words[i++];
            continue;
        }
        const TesseractReading::Word own = joined(reading.words.mid(i, end - i));
        QList<TesseractReading::Word> replacement;
        for (const TesseractReading::Word &word : english.words) {
            const int middle = (word.begin + word.end) / 2;
            if (middle >= own.begin && middle <= own.end)
                replacement << word;
        }
        const bool isSame = !replacement.isEmpty() &&
                            std::abs(replacement.first().begin - own.begin) < nearby &&
                            std::abs(replacement.last().end - own.end) < nearby;
        const double toBeat = hasWideLetters(own.text) ? sure : own.confidence;
        if (isSame && joined(replacement).confidence > toBeat) {
            replacement.first().hasBlankBefore = reading.words[i].hasBlankBefore;
            merged.words << replacement;
        } else {
            merged.words << reading.words.mid(i, end - i);
        }
        i = end;
    }
    return merged;
}

} // namespace

TesseractReading TesseractLineReader::best(const QList<TesseractReading> &readings, double leadOfOtherScript)
{
    const auto english = std::find_if(readings.begin(), readings.end(), [](const TesseractReading &reading) {
        return reading.language == latin;
    });
    TesseractReading best;
    double bestScore = 0;
    for (const TesseractReading &plain : readings) {
        const bool isMixed = english != readings.end() && plain.language != latin && hasLatinWords(plain);
        const TesseractReading reading = isMixed ? withWordsOf(*english, plain) : plain;
        const double score =
            reading.confidence() - (reading.language == traditionalChinese ? traditionalHandicap : 0);
        const bool isOtherScript = isChinese(best.language) && isChinese(reading.language);
        if (score > bestScore + (isOtherScript ? leadOfOtherScript : 0)) {
            best = reading;
            bestScore = score;
        }
    }
    // All data know Latin letters, but only one knows words of them.
    const bool isLatin = english != readings.end() && !best.words.isEmpty() && !hasWideLetters(best.text()) &&
                         english->confidence() > best.confidence() - clearLead;
    return isLatin ? *english : best;
}

TesseractReading TesseractLineReader::read(const QString &likely, const QImage &line)
{
    QList<TesseractReading> readings;
    const auto add = [&](const QString &language) {
        if (const auto reading = m_engines.read(language, line))
            readings << *reading;
    };
    add(likely);
    if (likely != latin && m_languages.contains(latin) && !readings.isEmpty() &&
        hasLatinWords(readings.first()))
        add(latin);
    const TesseractReading reading = best(readings);
    if (reading.confidence() >= sure)
        return reading;
    for (const QString &language : m_languages) {
        const bool isRead = std::any_of(readings.begin(), readings.end(), [&](const TesseractReading &known) {
            return known.language == language;
        });
        if (!isRead)
            add(language);
    }
    return best(readings, clearLead);
}

QString tidyText(const TesseractReading &reading)
{
    const QString text = reading.text();
    QString tidy;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const QChar before = tidy.isEmpty() ? QChar() : tidy.back();
        const QChar after = i + 1 < text.size() ? text[i + 1] : QChar();
        if (c == u' ' && isIdeographic(before) && (isIdeographic(after) || wideForm(after) != after))
            continue;
        const bool isOpening = c == u'(';
        const QChar neighbour = isOpening ? after : before;
        tidy += isIdeographic(neighbour) ? wideForm(c) : c;
    }
    return tidy.trimmed();
}

} // namespace tovi
