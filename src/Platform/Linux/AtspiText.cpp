// SPDX-License-Identifier: MIT
#include "Platform/Linux/AtspiText.h"

#include <QSet>

#include "Platform/Linux/AtspiNames.h"

namespace tovi::AtspiText {

namespace {

constexpr QChar embeddedObject(0xFFFC);
constexpr QChar padding(0xFEFF);
constexpr int depthLimit = 64;
constexpr std::size_t nodeLimit = 5000;
constexpr int offsetLimit = 1 << 30;
constexpr int selectionLimit = 32;

/// One object of a document's selected part. Children follow their parents.
struct Node
{
    AtspiObject object;
    AtspiTextRange range;
    QString text;      ///< of the range
    int firstLink = 0; ///< number of the first embedded object in the range among all of the object's
    quint32 role = 0;
    std::vector<std::size_t> children; ///< one for each embedded object; 0 where it has no text
};

/// Some applications count UTF-16 units and pad each character of two units with U+FEFF, so that the code
/// points that they send are as many as the units that they count.
QString withoutPadding(const QString &text)
{
    if (!text.contains(padding))
        return text;
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != padding || i == 0 || !text[i - 1].isLowSurrogate())
            result += text[i];
    }
    return result;
}

/// Applications count UTF-16 units or code points. Which it is shows where the length that they tell can be
/// compared with the text that they send.
class Counting
{
public:
    Counting(const QString &text, int length)
        : m_text(text)
        , m_inUnits(length == text.size())
    {}

    /// The application's number for a position in the text. Positions must not decrease from call to call.
    int offsetOf(qsizetype position)
    {
        while (m_position < position)
            step();
        return m_offset;
    }
    /// The other way round. Offsets must not decrease from call to call.
    qsizetype positionOf(int offset)
    {
        while (m_position < m_text.size() && m_offset < offset)
            step();
        // Not between the halves of a character.
        while (m_position < m_text.size() && m_text[m_position].isLowSurrogate())
            step();
        return m_position;
    }

private:
    void step()
    {
        if (m_inUnits || !m_text[m_position].isLowSurrogate())
            ++m_offset;
        ++m_position;
    }

    const QString &m_text;
    bool m_inUnits;
    qsizetype m_position = 0;
    int m_offset = 0;
};

DBusMessage textQuestion(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range)
{
    return request.method(object, Atspi::text, "GetText", "ii", range.start, range.end);
}

int lineBreaksInside(const QString &text)
{
    return static_cast<int>(text.trimmed().count(QLatin1Char('\n')));
}

void addRuns(const Node &node, QList<Run> &runs)
{
    Counting counting(node.text, node.range.end - node.range.start);
    qsizetype from = 0;
    while (from < node.text.size()) {
        qsizetype to = node.text.indexOf(embeddedObject, from);
        if (to < 0)
            to = node.text.size();
        const QString part = node.text.mid(from, to - from);
        if (!part.trimmed().isEmpty()) {
            const int start = node.range.start + counting.offsetOf(from);
            const int end =
                to == node.text.size() ? node.range.end : node.range.start + counting.offsetOf(to);
            runs << Run{node.object, {start, end}, lineBreaksInside(part)};
        }
        from = to + 1;
    }
}

/// A stretch of an object's text, to be read with what is embedded in it.
struct Part
{
    std::optional<std::size_t> parent;   ///< the node that embeds it
    std::optional<AtspiObject> object;   ///< none where the application does not tell
    std::optional<AtspiTextRange> range; ///< none: the object's own selection, else all its text
};

std::optional<AtspiTextRange> ordered(const std::optional<AtspiTextRange> &range)
{
    if (!range || std::min(range->start, range->end) < 0 ||
        std::max(range->start, range->end) > offsetLimit || range->start == range->end)
        return std::nullopt;
    return AtspiTextRange{std::min(range->start, range->end), std::max(range->start, range->end)};
}

bool hasWideCharacters(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
}

/// Chromium converts the ends of selections from UTF-16 units to code points twice over. Its caret, where the
/// object has it, is converted once: it tells whether the selection still needs to be put right.
AtspiTextRange repaired(AtspiRequest &request, const AtspiObject &object, const QString &text,
                        AtspiTextRange range)
{
    if (!hasWideCharacters(text) || !request.isOfToolkit(object, "Chromium"))
        return range;
    Counting codePoints(text, -1);
    const AtspiTextRange units{static_cast<int>(codePoints.positionOf(range.start)),
                               static_cast<int>(codePoints.positionOf(range.end))};
    const int caret =
        AtspiReply::integerProperty(request.call(request.property(object, Atspi::text, "CaretOffset")))
            .value_or(-1);
    // Inside an embedded object it stands at the object's start, whichever end the selection has.
    Counting untilCaret(text, -1);
    const qsizetype position = untilCaret.positionOf(std::max(caret, 0));
    const bool tells = caret >= 0 && (position == text.size() || text[position] != embeddedObject);
    const bool isRight =
        tells && (caret == range.start || caret == range.end) && caret != units.start && caret != units.end;
    return isRight ? range : units;
}

/// Adds the parts that have text as nodes.
void addNodes(AtspiRequest &request, std::vector<Node> &nodes, const std::vector<Part> &parts,
              QSet<AtspiObject> &seen)
{
    std::vector<DBusMessage> questions;
    for (const Part &part : parts) {
        const AtspiObject object = part.object.value_or(AtspiObject{});
        questions.push_back(request.method(object, Atspi::accessible, "GetRole"));
        questions.push_back(request.property(object, Atspi::text, "CharacterCount"));
        questions.push_back(textQuestion(request, object, {0, -1}));
        questions.push_back(request.method(object, Atspi::text, "GetNSelections"));
        questions.push_back(request.method(object, Atspi::text, "GetSelection", "i", 0));
    }
    const std::vector<DBusReply> replies = request.callAll(questions);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Part &part = parts[i];
        const DBusReply *answer = &replies[5 * i];
        std::size_t added = 0;
        const int count = AtspiReply::integerProperty(answer[1]).value_or(0);
        const QString text = AtspiReply::text(answer[2]).value_or(QString());
        if (part.object && !text.isEmpty() && !seen.contains(*part.object)) {
            seen.insert(*part.object);
            AtspiTextRange range = part.range.value_or(AtspiTextRange{0, count});
            const auto selected = ordered(AtspiReply::range(answer[4]));
            if (!part.range && AtspiReply::integer(answer[3]).value_or(0) > 0 && selected)
                range = repaired(request, *part.object, text, *selected);
            Counting counting(text, count);
            const qsizetype from = counting.positionOf(range.start);
            const qsizetype to = counting.positionOf(range.end);
            added = nodes.size();
            nodes.push_back({*part.object,
                             range,
                             text.mid(from, to - from),
                             static_cast<int>(QStringView(text).left(from).count(embeddedObject)),
                             AtspiReply::number(answer[0]).value_or(0),
                             {}});
        }
        if (part.parent)
            nodes[*part.parent].children.push_back(added);
    }
}

/// The objects that are embedded in the nodes from `first` on.
std::vector<Part> embeddedIn(AtspiRequest &request, const std::vector<Node> &nodes, std::size_t first)
{
    std::vector<Part> parts;
    std::vector<DBusMessage> questions;
    for (std::size_t i = first; i < nodes.size(); ++i) {
        // By their order: applications disagree with themselves about offsets of embedded objects.
        const auto count = nodes[i].text.count(embeddedObject);
        if (nodes.size() + parts.size() + static_cast<std::size_t>(count) > nodeLimit)
            return {};
        for (int link = 0; link < count; ++link) {
            parts.push_back({i, std::nullopt, std::nullopt});
            questions.push_back(
                request.method(nodes[i].object, Atspi::hypertext, "GetLink", "i", nodes[i].firstLink + link));
        }
    }
    const std::vector<DBusReply> links = request.callAll(questions);
    questions.clear();
    for (const DBusReply &link : links)
        questions.push_back(request.method(AtspiReply::object(link).value_or(AtspiObject{}), Atspi::hyperlink,
                                           "GetObject", "i", 0));
    const std::vector<DBusReply> objects = request.callAll(questions);
    for (std::size_t i = 0; i < parts.size(); ++i)
        parts[i].object = AtspiReply::object(objects[i]);
    return parts;
}

/// Puts the nodes' texts together.
class Assembly
{
public:
    explicit Assembly(const std::vector<Node> &nodes)
        : m_nodes(nodes)
    {
        add(nodes.front());
    }
    const QString &text() const { return m_text; }

private:
    void add(const Node &node) // NOLINT(misc-no-recursion): nodes are at most depthLimit deep
    {
        std::size_t child = 0;
        for (const QChar c : node.text) {
            if (c != embeddedObject) {
                append(c);
            } else if (const std::size_t index = node.children[child++]) {
                const quint32 role = m_nodes[index].role;
                const QChar separator = QLatin1Char(Atspi::isCell(role) ? '\t' : '\n');
                const bool isBlock = !Atspi::isInline(role);
                if (isBlock)
                    separate(separator);
                add(m_nodes[index]);
                if (isBlock)
                    separate(separator);
            }
        }
    }
    void separate(QChar separator)
    {
        if (m_separator != QLatin1Char('\n'))
            m_separator = separator;
    }
    void append(QChar c)
    {
        if (!m_separator.isNull() && !m_text.isEmpty() && !m_text.endsWith(QLatin1Char('\n')) &&
            c != QLatin1Char('\n'))
            m_text += m_separator;
        m_separator = {};
        m_text += c;
    }

    const std::vector<Node> &m_nodes;
    QString m_text;
    QChar m_separator;
};

} // namespace

Selection selection(AtspiRequest &request, const AtspiObject &object)
{
    const auto count =
        AtspiReply::integer(request.call(request.method(object, Atspi::text, "GetNSelections")));
    Selection result{count.has_value(), std::nullopt};
    for (int i = 0; i < std::min(count.value_or(0), selectionLimit) && !result.range; ++i)
        result.range = ordered(
            AtspiReply::range(request.call(request.method(object, Atspi::text, "GetSelection", "i", i))));
    if (result.range && request.isOfToolkit(object, "Chromium")) {
        const auto text = AtspiReply::text(request.call(textQuestion(request, object, {0, -1})));
        result.range = repaired(request, object, text.value_or(QString()), *result.range);
    }
    return result;
}

std::optional<Content> plainContent(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range)
{
    const auto text = AtspiReply::text(request.call(textQuestion(request, object, range)));
    if (!text)
        return std::nullopt;
    Content content{withoutPadding(*text), {}, text->contains(embeddedObject)};
    if (!content.embedding)
        addRuns(Node{object, range, *text, 0, 0, {}}, content.runs);
    return content;
}

std::optional<Content> content(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range)
{
    std::vector<Node> nodes;
    QSet<AtspiObject> seen;
    std::vector<Part> level{{std::nullopt, object, range}};
    for (int depth = 0; depth < depthLimit && !level.empty(); ++depth) {
        const std::size_t first = nodes.size();
        addNodes(request, nodes, level, seen);
        level = embeddedIn(request, nodes, first);
    }
    if (request.error() != AXError::None || nodes.empty())
        return std::nullopt;
    // Where one of the limits was reached, some embedded objects were left unread.
    for (const Node &node : nodes) {
        if (node.text.count(embeddedObject) != static_cast<qsizetype>(node.children.size()))
            return std::nullopt;
    }
    Content content{withoutPadding(Assembly(nodes).text()), {}, nodes.front().text.contains(embeddedObject)};
    for (const Node &node : nodes)
        addRuns(node, content.runs);
    return content;
}

} // namespace tovi::AtspiText
