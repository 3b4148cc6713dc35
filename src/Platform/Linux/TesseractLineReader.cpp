// SPDX-License-Identifier: MIT
#include "Platform/Linux/TesseractLineReader.h"

#include <algorithm>

#include "Platform/Linux/ChineseScript.h"
#include "Platform/Linux/TesseractData.h"

namespace tovi {

using namespace tesseractData;

namespace {

constexpr double sure = 0.85;      ///< a reading that needs no second one
constexpr double plausible = 0.6;  ///< below it a line is in quite another language
constexpr double barelyText = 0.5; ///< below it a line is an ornament or a photograph
constexpr double likelyWord = 0.6; ///< a word of digits and capitals that is one
constexpr int longWord = 12;
constexpr int shortWord = 4;
constexpr double clearLead = 0.05; ///< before an unlikely language is believed
/// The data for Traditional Chinese read Simplified too, and sometimes more surely, but write it their way.
constexpr double leadOfTraditional = 0.05;
constexpr double englishLead = 0.07; ///< what another language's reading of Latin letters has to be surer by
constexpr int nearby = 4; ///< pixels of a line's picture that readings differ about where a word is

bool isKana(QChar c)
{
    return c.unicode() > 0x3040 && c.unicode() <= 0x30ff;
}

/// Ideographs, kana and their punctuation, all of one width and without blanks between them.
bool isIdeographic(QChar c)
{
    const ushort code = c.unicode();
    return isIdeograph(c) || (code >= 0x3000 && code <= 0x30ff) || code >= 0xff00;
}

bool isSyllable(QChar c)
{
    return c.unicode() >= 0xac00 && c.unicode() <= 0xd7a3;
}

/// What the Korean data make of the strokes of Latin letters.
bool isStrayStroke(QChar c)
{
    static constexpr QStringView brackets = u"『』「」《》\\";
    return (c.unicode() >= 0x3131 && c.unicode() <= 0x318e) || brackets.contains(c);
}

bool isWide(QChar c)
{
    return isIdeographic(c) || isSyllable(c) || isStrayStroke(c);
}

/// Ideographs and a vowel mark that dashes, bars and rings look like: they tell no language.
bool isStroke(QChar c)
{
    static constexpr QStringView strokes = u"一ー丨〇";
    return strokes.contains(c);
}

bool isTelling(QChar c)
{
    return isWide(c) && !isStroke(c);
}

template <class Predicate>
bool hasAny(const QString &text, Predicate predicate)
{
    return std::any_of(text.begin(), text.end(), predicate);
}

bool isChinese(const QString &language)
{
    return language == simplifiedChinese || language == traditionalChinese;
}

TesseractReading part(const TesseractReading &reading, qsizetype begin, qsizetype end)
{
    return {.language = reading.language, .words = reading.words.mid(begin, end - begin)};
}

/// Of the words in the language's own script alone: all data know Latin letters. Of all, if it has none.
double scriptConfidence(const TesseractReading &reading)
{
    TesseractReading own{.language = reading.language, .words = {}};
    for (const TesseractReading::Word &word : reading.words) {
        if (hasAny(word.text, isTelling))
            own.words << word;
    }
    return own.words.isEmpty() ? reading.confidence() : own.confidence();
}

/// Of the letters that the other reading does not have; 1 if there are none.
double confidenceOfOwn(const TesseractReading &reading, const TesseractReading &other)
{
    const QString text = other.text();
    double sum = 0;
    qsizetype count = 0;
    for (const TesseractReading::Word &word : reading.words) {
        const qsizetype own = std::count_if(word.text.begin(), word.text.end(),
                                            [&](QChar c) { return isIdeograph(c) && !text.contains(c); });
        sum += word.confidence * double(own);
        count += own;
    }
    return count ? sum / double(count) : 1;
}

bool hasLatinWords(const TesseractReading &reading)
{
    return std::any_of(reading.words.begin(), reading.words.end(), [&](const TesseractReading::Word &word) {
        const bool mayBeLatin =
            !hasAny(word.text, isTelling) || (reading.language == korean && hasAny(word.text, isStrayStroke));
        return mayBeLatin && hasAny(word.text, [](QChar c) { return c.isLetterOrNumber(); });
    });
}

/// What the English data make of another script: signs, digits and capitals that they are unsure of.
bool mayBeIdeographs(const TesseractReading::Word &word)
{
    const QString &text = word.text;
    const auto letters = std::ranges::count_if(text, [](QChar c) { return c.isLetterOrNumber(); });
    const auto small = std::ranges::count_if(text, [](QChar c) { return c.isLower(); });
    const bool isName = small >= shortWord && small == letters;
    return word.confidence < (text.size() < longWord ? likelyWord : barelyText) &&
           letters * 2 >= text.size() && !isName && text.count(u'-') < 2;
}

/// Whether the English reading of a stretch of a line is better than the other language's.
bool isBetter(const TesseractReading &english, const TesseractReading &own)
{
    const QString text = own.text();
    if (!hasAny(english.text(), [](QChar c) { return c.isLetterOrNumber(); }))
        return false;
    if (own.language != korean)
        return !hasAny(text, isTelling) && english.confidence() > own.confidence();
    if (hasAny(text, isStrayStroke))
        return english.confidence() > (hasAny(text, isSyllable) ? sure : plausible);
    // These data know digits, and read letters as such.
    const bool hasLetters = hasAny(english.text(), [](QChar c) { return c.isLetter(); });
    return !hasAny(text, isSyllable) && english.confidence() > (hasLetters ? plausible : own.confidence());
}

/// The line between its ends and the blanks that both readings see, each stretch by the better one.
TesseractReading withWordsOf(const TesseractReading &english, const TesseractReading &reading)
{
    TesseractReading merged{.language = reading.language, .words = {}};
    qsizetype begin = 0;
    qsizetype englishBegin = 0;
    const auto add = [&](qsizetype end, qsizetype englishEnd) {
        const TesseractReading own = part(reading, begin, end);
        const TesseractReading other = part(english, englishBegin, englishEnd);
        if (!other.words.isEmpty() && isBetter(other, own)) {
            const qsizetype first = merged.words.size();
            merged.words << other.words;
            merged.words[first].hasBlankBefore |= own.words.first().hasBlankBefore;
            merged.words[first].isApart |= own.words.first().isApart;
        } else {
            merged.words << own.words;
        }
        begin = end;
        englishBegin = englishEnd;
    };
    for (qsizetype i = 1; i < reading.words.size(); ++i) {
        const TesseractReading::Word &before = reading.words[i - 1];
        const TesseractReading::Word &word = reading.words[i];
        if (!word.hasBlankBefore && !(hasAny(before.text, isTelling) && word.text.front().isLetterOrNumber()))
            continue;
        // Letters without blanks between them overlap.
        const int gapBegin = std::min(before.end, word.begin) - nearby;
        const int gapEnd = std::max(before.end, word.begin) + nearby;
        for (qsizetype k = englishBegin + 1; k < english.words.size(); ++k) {
            if (english.words[k - 1].end <= gapEnd && english.words[k].begin >= gapBegin) {
                add(i, k);
                break;
            }
        }
    }
    if (!reading.words.isEmpty())
        add(reading.words.size(), english.words.size());
    return merged;
}

} // namespace

TesseractReading TesseractLineReader::best(const QList<TesseractReading> &readings, double lead)
{
    const auto find = [&](const QString &language) {
        return std::find_if(readings.begin(), readings.end(),
                            [&](const TesseractReading &reading) { return reading.language == language; });
    };
    const auto none = readings.end();
    const auto english = find(latin);
    const auto simplified = find(simplifiedChinese);
    const auto traditional = find(traditionalChinese);
    QString otherScript;
    if (simplified != none && traditional != none) {
        const QString likely = readings.first().language;
        double toBeat = leadOfTraditional + (likely == simplifiedChinese ? lead : 0);
        if (likely == traditionalChinese && lead > 0)
            toBeat = 0;
        otherScript =
            traditionalLead(*simplified, *traditional) > toBeat ? simplifiedChinese : traditionalChinese;
    }
    TesseractReading best;
    double bestScore = 0;
    for (const TesseractReading &plain : readings) {
        if (plain.language == latin || plain.language == otherScript)
            continue;
        const TesseractReading reading =
            english != none && hasLatinWords(plain) ? withWordsOf(*english, plain) : plain;
        const bool isLikely = plain.language == readings.first().language ||
                              (isChinese(plain.language) && otherScript == readings.first().language);
        const double score = scriptConfidence(reading) + (isLikely ? lead : 0);
        if (score > bestScore) {
            best = reading;
            bestScore = score;
        }
    }
    if (english == none)
        return best;
    // All data know Latin letters, but only one knows words of them.
    const double latinLead = hasAny(best.text(), isTelling) ? 0 : englishLead;
    return english->confidence() > best.confidence() - latinLead ? *english : best;
}

bool TesseractLineReader::isSure(const TesseractReading &reading)
{
    const double confidence = scriptConfidence(reading);
    const QString text = reading.text();
    // Ideographs alone are as likely Chinese, and kana or syllables are nothing else.
    if (reading.language == japanese)
        return hasAny(text, isKana) ? confidence >= plausible
                                    : confidence >= sure && !hasAny(text, isTelling);
    if (reading.language == latin)
        return confidence >= plausible && std::ranges::none_of(reading.words, mayBeIdeographs);
    return confidence >= sure || (reading.language == korean && confidence >= plausible);
}

TesseractReading TesseractLineReader::read(const QString &likely, const QImage &line,
                                           const QList<TesseractReading> &known)
{
    QList<TesseractReading> readings;
    const auto add = [&](const QString &language) {
        if (!m_languages.contains(language) ||
            std::ranges::find(readings, language, &TesseractReading::language) != readings.end())
            return;
        const auto read = std::ranges::find(known, language, &TesseractReading::language);
        if (read != known.end())
            readings << *read;
        else if (const auto reading = m_engines.read(language, line))
            readings << *reading;
    };
    add(likely);
    if (!readings.isEmpty() && hasLatinWords(readings.first()))
        add(latin);
    TesseractReading reading = best(readings);
    if (isSure(reading))
        return reading;
    const bool isOfIdeographs = isChinese(reading.language) || reading.language == japanese;
    if (isOfIdeographs && scriptConfidence(reading) >= plausible) {
        add(simplifiedChinese);
        add(traditionalChinese);
        reading = best(readings, clearLead);
        if (scriptConfidence(reading) >= sure)
            return reading;
    }
    for (const QString &language : m_languages)
        add(language);
    return best(readings, clearLead);
}

TesseractReading TesseractLineReader::readIn(const QString &language, const QImage &line)
{
    QList<TesseractReading> readings;
    if (const auto reading = m_engines.read(language, line))
        readings << *reading;
    if (!readings.isEmpty() && hasLatinWords(readings.first()) && m_languages.contains(latin)) {
        if (const auto reading = m_engines.read(latin, line))
            readings << *reading;
    }
    return best(readings);
}

bool TesseractLineReader::readsChinese(const TesseractReading &reading)
{
    const QString text = reading.text();
    return isChinese(reading.language) &&
           std::count_if(text.begin(), text.end(), isIdeographic) * 2 > text.size();
}

double TesseractLineReader::traditionalLead(const TesseractReading &simplified,
                                            const TesseractReading &traditional)
{
    return confidenceOfOwn(traditional, simplified) - confidenceOfOwn(simplified, traditional);
}

bool isText(const TesseractReading &reading)
{
    double sum = 0;
    qsizetype length = 0;
    for (const TesseractReading::Word &word : reading.words) {
        // The library is as sure of a word as of its worst letter, which says little about an address.
        const double confidence =
            word.text.size() >= longWord ? std::max(word.confidence, sure) : word.confidence;
        sum += confidence * double(word.text.size());
        length += word.text.size();
    }
    return length > 0 && sum / double(length) >= barelyText &&
           hasAny(reading.text(), [](QChar c) { return c.isLetterOrNumber(); });
}

namespace {

QChar wideForm(QChar c)
{
    static constexpr QStringView narrow = u",!?:;()";
    return narrow.contains(c) ? QChar(c.unicode() + 0xfee0) : c;
}

/// The dash that a stroke beside Latin letters was; the stroke elsewhere.
QChar withoutStroke(const QString &text, qsizetype at)
{
    if (text[at] != u'一' && text[at] != u'ー')
        return text[at];
    const QStringView before = QStringView(text).first(at).trimmed();
    const QStringView after = QStringView(text).sliced(at + 1).trimmed();
    const auto isLatin = [](QChar c) { return c.isLetterOrNumber() && c.unicode() < 0x250; };
    const bool isAtEdge = before.isEmpty() || after.isEmpty();
    const bool isDash = (before.isEmpty() || isLatin(before.back())) &&
                        (after.isEmpty() || isLatin(after.front())) && before.size() + after.size() > 0 &&
                        !(isAtEdge && hasAny(text, isTelling));
    return isDash ? QChar(u'—') : text[at];
}

/// A bullet or an icon before a label is read as some sign or letter.
bool beginsWithOrnament(const TesseractReading &reading)
{
    if (reading.words.size() < 2 || reading.words.first().text.size() > 1)
        return false;
    const TesseractReading::Word &word = reading.words.first();
    const QChar c = word.text.front();
    return !isWide(c) && reading.words[1].hasBlankBefore &&
           word.confidence < (c.isLetterOrNumber() ? barelyText : sure);
}

} // namespace

QString tidyText(const TesseractReading &reading)
{
    const QString text =
        (beginsWithOrnament(reading) ? part(reading, 1, reading.words.size()) : reading).text();
    QString tidy;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = withoutStroke(text, i);
        const QChar before = tidy.isEmpty() ? QChar() : tidy.back();
        const QChar after = i + 1 < text.size() ? text[i + 1] : QChar();
        if (c == u' ' && isIdeographic(before) && (isIdeographic(after) || wideForm(after) != after))
            continue;
        const bool isOpening = c == u'(';
        const QChar neighbour = isOpening ? after : before;
        tidy += c == u'\t' ? u' ' : isIdeographic(neighbour) ? wideForm(c) : c;
    }
    return tidy.trimmed();
}

} // namespace tovi
