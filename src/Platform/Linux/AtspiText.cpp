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
    QString text;
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

/// How far a position in a text is from the text's start, in the counting that makes `text` as long as its
/// range.
class Counting
{
public:
    Counting(const QString &text, AtspiTextRange range)
        : m_text(text)
        , m_inUnits(range.end - range.start == text.size())
    {}

    /// Positions must not decrease from call to call.
    int offsetOf(qsizetype position)
    {
        for (; m_position < position; ++m_position) {
            if (m_inUnits || !m_text[m_position].isLowSurrogate())
                ++m_offset;
        }
        return m_offset;
    }

private:
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
    Counting counting(node.text, node.range);
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

/// The objects embedded in a level of nodes: for each its parent, and where it could be found.
struct Embedded
{
    std::size_t parent;
    int offset;
    std::optional<AtspiObject> object;
};

void resolve(AtspiRequest &request, const std::vector<Node> &nodes, std::vector<Embedded> &embedded)
{
    const auto round = [&](const char *interface, const char *member, auto objectOf, auto argumentOf) {
        std::vector<DBusMessage> questions;
        for (std::size_t i = 0; i < embedded.size(); ++i)
            questions.push_back(request.method(objectOf(i), interface, member, "i", argumentOf(i)));
        return request.callAll(questions);
    };
    const auto parentOf = [&](std::size_t i) { return nodes[embedded[i].parent].object; };

    const auto indices =
        round(Atspi::hypertext, "GetLinkIndex", parentOf, [&](std::size_t i) { return embedded[i].offset; });
    const auto links = round(Atspi::hypertext, "GetLink", parentOf,
                             [&](std::size_t i) { return AtspiReply::integer(indices[i]).value_or(-1); });
    const auto objects = round(
        Atspi::hyperlink, "GetObject",
        [&](std::size_t i) { return AtspiReply::object(links[i]).value_or(AtspiObject{}); },
        [](std::size_t) { return 0; });
    for (std::size_t i = 0; i < embedded.size(); ++i)
        embedded[i].object = AtspiReply::object(objects[i]);
}

std::optional<AtspiTextRange> ordered(const std::optional<AtspiTextRange> &range)
{
    if (!range || std::min(range->start, range->end) < 0 ||
        std::max(range->start, range->end) > offsetLimit || range->start == range->end)
        return std::nullopt;
    return AtspiTextRange{std::min(range->start, range->end), std::max(range->start, range->end)};
}

/// Adds the embedded objects that have text as nodes: each with its own selection, or whole where it has
/// none.
void addNodes(AtspiRequest &request, std::vector<Node> &nodes, const std::vector<Embedded> &embedded,
              QSet<AtspiObject> &seen)
{
    std::vector<DBusMessage> questions;
    for (const Embedded &one : embedded) {
        const AtspiObject object = one.object.value_or(AtspiObject{});
        questions.push_back(request.method(object, Atspi::accessible, "GetRole"));
        questions.push_back(request.property(object, Atspi::text, "CharacterCount"));
        questions.push_back(request.method(object, Atspi::text, "GetNSelections"));
        questions.push_back(request.method(object, Atspi::text, "GetSelection", "i", 0));
    }
    const std::vector<DBusReply> replies = request.callAll(questions);
    for (std::size_t i = 0; i < embedded.size(); ++i) {
        nodes[embedded[i].parent].children.push_back(0);
        const int count = AtspiReply::integerProperty(replies[4 * i + 1]).value_or(0);
        if (!embedded[i].object || count <= 0 || count > offsetLimit || seen.contains(*embedded[i].object))
            continue;
        seen.insert(*embedded[i].object);
        Node node{*embedded[i].object, {0, count}, {}, AtspiReply::number(replies[4 * i]).value_or(0), {}};
        if (AtspiReply::integer(replies[4 * i + 2]).value_or(0) > 0)
            node.range = ordered(AtspiReply::range(replies[4 * i + 3])).value_or(node.range);
        nodes[embedded[i].parent].children.back() = nodes.size();
        nodes.push_back(std::move(node));
    }
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
    return result;
}

std::optional<Content> plainContent(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range)
{
    const auto text = AtspiReply::text(request.call(textQuestion(request, object, range)));
    if (!text)
        return std::nullopt;
    Content content{withoutPadding(*text), {}, text->contains(embeddedObject)};
    if (!content.embedding)
        addRuns(Node{object, range, *text, 0, {}}, content.runs);
    return content;
}

std::optional<Content> content(AtspiRequest &request, const AtspiObject &object, AtspiTextRange range)
{
    std::vector<Node> nodes{Node{object, range, {}, 0, {}}};
    QSet<AtspiObject> seen{object};
    std::size_t levelStart = 0;
    for (int depth = 0; depth < depthLimit && levelStart < nodes.size(); ++depth) {
        const std::size_t levelEnd = nodes.size();
        std::vector<DBusMessage> questions;
        for (std::size_t i = levelStart; i < levelEnd; ++i)
            questions.push_back(textQuestion(request, nodes[i].object, nodes[i].range));
        const std::vector<DBusReply> replies = request.callAll(questions);
        std::vector<Embedded> embedded;
        for (std::size_t i = levelStart; i < levelEnd; ++i) {
            nodes[i].text = AtspiReply::text(replies[i - levelStart]).value_or(QString());
            Counting counting(nodes[i].text, nodes[i].range);
            for (qsizetype at = nodes[i].text.indexOf(embeddedObject); at >= 0;
                 at = nodes[i].text.indexOf(embeddedObject, at + 1))
                embedded.push_back({i, nodes[i].range.start + counting.offsetOf(at), std::nullopt});
        }
        if (levelEnd + embedded.size() > nodeLimit)
            return std::nullopt;
        resolve(request, nodes, embedded);
        addNodes(request, nodes, embedded, seen);
        levelStart = levelEnd;
    }
    // The deepest level that was reached has no children where its own text was not read.
    if (request.error() != AXError::None || levelStart < nodes.size())
        return std::nullopt;
    Content content{withoutPadding(Assembly(nodes).text()), {}, nodes.front().text.contains(embeddedObject)};
    for (const Node &node : nodes)
        addRuns(node, content.runs);
    return content;
}

std::optional<QRect> bounds(AtspiRequest &request, const AtspiObject &object, const QList<Run> &runs)
{
    std::vector<DBusMessage> questions;
    questions.push_back(
        request.method(object, Atspi::component, "GetExtents", "u", Atspi::screenCoordinates));
    for (const Run &run : runs) {
        questions.push_back(request.method(run.object, Atspi::text, "GetRangeExtents", "iiu", run.range.start,
                                           run.range.end, Atspi::screenCoordinates));
        if (run.lineBreaks > 0)
            questions.push_back(request.method(run.object, Atspi::text, "GetCharacterExtents", "iu",
                                               run.range.start, Atspi::screenCoordinates));
    }
    const std::vector<DBusReply> replies = request.callAll(questions);
    QRect united;
    std::size_t next = 1;
    for (const Run &run : runs) {
        const QRect rectangle = AtspiReply::rectangle(replies[next++]).value_or(QRect());
        if (run.lineBreaks > 0) {
            // Some editors answer with one line's rectangle for text of several lines, often not even the
            // selected one's. A wrong place is worse than none.
            const qint64 lineHeight = AtspiReply::rectangle(replies[next++]).value_or(QRect()).height();
            if (rectangle.height() < lineHeight * (run.lineBreaks + 1) * 2 / 3)
                return std::nullopt;
        }
        if (rectangle.width() > 0 && rectangle.height() > 0)
            united = united.united(rectangle);
    }
    const QRect visible = AtspiReply::rectangle(replies[0]).value_or(united).intersected(united);
    return visible.isEmpty() ? std::nullopt : std::optional(visible);
}

} // namespace tovi::AtspiText
