// SPDX-License-Identifier: MIT
#include "Platform/Linux/ApertiumText.h"

#include <QRegularExpression>

namespace tovi::ApertiumText {

namespace {

// Long enough for any sentence, short enough for replies that keep coming.
constexpr qsizetype longestPiece = 2000;

enum class Unit { Letter, Neutral, Space, Opaque };

bool isScriptOf(const QString &language, QChar::Script script)
{
    using Script = QChar::Script;
    if (language == QLatin1String("ru"))
        return script == Script::Script_Cyrillic;
    if (language == QLatin1String("ko"))
        return script == Script::Script_Hangul || script == Script::Script_Han;
    if (language == QLatin1String("ja"))
        return script == Script::Script_Han || script == Script::Script_Hiragana ||
               script == Script::Script_Katakana;
    if (language.startsWith(QLatin1String("zh")))
        return script == Script::Script_Han;
    return script == Script::Script_Latin;
}

/// Marks that sentences are made of and that no stage of a pipeline gives another meaning.
bool isPunctuation(char32_t c)
{
    static constexpr std::u32string_view marks = U".,;:!?'\"()-%&¿¡«»–—‘’“”„…、。，！？；：（）「」";
    return marks.find(c) != std::u32string_view::npos;
}

Unit unitOf(char32_t c, const QString &language)
{
    if (c == U' ')
        return Unit::Space;
    if (isPunctuation(c) || (c >= U'0' && c <= U'9'))
        return Unit::Neutral;
    if (QChar::isLetter(c) && isScriptOf(language, QChar::script(c)))
        return Unit::Letter;
    // Accents that are written separately.
    if (c >= 0x300 && c <= 0x36f)
        return Unit::Neutral;
    return Unit::Opaque;
}

/// The stretches that look like addresses, file names or mail addresses: never words.
QList<ApertiumPiece> addresses(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\b(?:[A-Za-z][A-Za-z0-9+.-]{1,15}://|www\\.|mailto:)[^\\s<>\"]+"
                       "|[\\w.+-]{1,64}@[\\w-]{1,63}\\.[\\w.-]+"
                       "|\\b[\\w-]{2,63}(?:\\.[a-z0-9_-]{2,63}){1,8}\\b"));
    QList<ApertiumPiece> found;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        found.append({match.capturedStart(), match.capturedLength(), false});
    }
    return found;
}

class Splitter
{
public:
    Splitter(const QString &text, const QString &language)
        : m_text(text)
        , m_language(language)
    {}

    QList<ApertiumPiece> split()
    {
        qsizetype position = 0;
        for (const ApertiumPiece &address : addresses(m_text)) {
            addWords(position, address.start);
            add(address.start, address.length, false);
            position = address.start + address.length;
        }
        addWords(position, m_text.size());
        return std::move(m_pieces);
    }

private:
    void add(qsizetype start, qsizetype length, bool isTranslatable)
    {
        if (length <= 0)
            return;
        if (!isTranslatable && !m_pieces.isEmpty() && !m_pieces.last().isTranslatable)
            m_pieces.last().length += length;
        else
            m_pieces.append({start, length, isTranslatable});
    }

    void addWords(qsizetype start, qsizetype end)
    {
        qsizetype runStart = start;
        qsizetype position = start;
        while (position < end) {
            qsizetype next = position;
            const Unit unit = unitAt(next);
            const bool isBlankRun =
                unit == Unit::Space && (position == runStart || m_text.at(position - 1) == u' ' ||
                                        (next < end && m_text.at(next) == u' '));
            if (unit == Unit::Opaque || isBlankRun) {
                addRun(runStart, position);
                add(position, next - position, false);
                runStart = next;
            }
            position = next;
        }
        addRun(runStart, end);
    }

    /// A run of words and single spaces that begins with no space.
    void addRun(qsizetype start, qsizetype end)
    {
        qsizetype wordsEnd = end;
        while (wordsEnd > start && m_text.at(wordsEnd - 1) == u' ')
            --wordsEnd;
        while (start < wordsEnd) {
            qsizetype pieceEnd = wordsEnd;
            if (wordsEnd - start > longestPiece)
                pieceEnd = cut(start, start + longestPiece);
            add(start, pieceEnd - start, hasLetter(start, pieceEnd));
            start = pieceEnd;
            while (start < wordsEnd && m_text.at(start) == u' ') {
                add(start, 1, false);
                ++start;
            }
        }
        add(wordsEnd, end - wordsEnd, false);
    }

    /// The best place to end a piece at or before `limit`: after a sentence, else after a word.
    qsizetype cut(qsizetype start, qsizetype limit) const
    {
        qsizetype afterWord = -1;
        for (qsizetype i = limit; i > start; --i) {
            if (m_text.at(i) != u' ')
                continue;
            if (QStringView(u".!?…").contains(m_text.at(i - 1)))
                return i;
            if (afterWord < 0)
                afterWord = i;
        }
        if (afterWord > 0)
            return afterWord;
        return m_text.at(limit).isLowSurrogate() ? limit - 1 : limit;
    }

    bool hasLetter(qsizetype start, qsizetype end) const
    {
        while (start < end) {
            if (unitAt(start) == Unit::Letter)
                return true;
        }
        return false;
    }

    /// Classifies the character at `position` and moves past it.
    Unit unitAt(qsizetype &position) const
    {
        const QChar c = m_text.at(position++);
        if (c.isHighSurrogate() && position < m_text.size() && m_text.at(position).isLowSurrogate())
            return unitOf(QChar::surrogateToUcs4(c, m_text.at(position++)), m_language);
        return c.isSurrogate() ? Unit::Opaque : unitOf(c.unicode(), m_language);
    }

    const QString &m_text;
    const QString &m_language;
    QList<ApertiumPiece> m_pieces;
};

/// A piece without an end gets a full stop, or the last stages would wait for more words.
bool endsSentence(QStringView piece)
{
    return QStringView(u".!?…:;").contains(piece.back());
}

/// Sentences begin with a capital in Apertium's answers, whatever the text did.
void restoreCase(QString &translation, QStringView piece)
{
    const auto firstLetter = [](QStringView text) {
        return std::find_if(text.begin(), text.end(), [](QChar c) { return c.isLetter(); }) - text.begin();
    };
    const auto first = firstLetter(piece);
    const auto translatedFirst = firstLetter(translation);
    if (first == piece.size() || translatedFirst == translation.size())
        return;
    if (piece.at(first).isLower()) {
        const bool isAcronym =
            translatedFirst + 1 < translation.size() && translation.at(translatedFirst + 1).isUpper();
        if (!isAcronym)
            translation[translatedFirst] = translation.at(translatedFirst).toLower();
        return;
    }
    const auto letters = std::count_if(piece.begin(), piece.end(), [](QChar c) { return c.isLetter(); });
    if (letters > 1 && std::none_of(piece.begin(), piece.end(), [](QChar c) { return c.isLower(); }))
        translation = translation.toUpper();
}

} // namespace

QList<ApertiumPiece> split(const QString &text, const QString &language)
{
    return Splitter(text, language).split();
}

QByteArray encoded(QStringView piece)
{
    const QByteArray words = piece.toString().normalized(QString::NormalizationForm_C).toUtf8();
    return words + (endsSentence(piece) ? "[]" : ".[]");
}

QString decoded(const QByteArray &reply, QStringView piece)
{
    QString text = QString::fromUtf8(reply);
    if (text.endsWith(QLatin1String("[]")))
        text.chop(2);
    if (!endsSentence(piece) && text.endsWith(u'.'))
        text.chop(1);
    // Pieces hold none of these: what is left of them marks words that a stage did not know.
    static const QRegularExpression marks(QStringLiteral("[\\\\*#@^$<>{}\\[\\]]"));
    text.remove(marks);
    // Words that fall away leave their blanks behind.
    static const QRegularExpression blanks(QStringLiteral(" {2,}"));
    text.replace(blanks, QStringLiteral(" "));
    text = text.trimmed();
    if (text.isEmpty())
        return piece.toString();
    restoreCase(text, piece);
    return text;
}

} // namespace tovi::ApertiumText
