// SPDX-License-Identifier: MIT
#include "Appcast.h"

#include <QRegularExpression>
#include <QSysInfo>
#include <QXmlStreamReader>

namespace tovi {

namespace {

constexpr qsizetype longestNotes = 32 * 1024; // characters
constexpr qsizetype longestVersion = 64;
constexpr qsizetype longestTitle = 200;
constexpr qsizetype mostItems = 1000;
const auto ownSystem = QLatin1String("linux");

/// A version's next number or word; separators are skipped.
QStringView nextComponent(QStringView &text)
{
    qsizetype begin = 0;
    while (begin < text.size() && !text[begin].isLetterOrNumber())
        ++begin;
    qsizetype end = begin;
    while (end < text.size() && text[end].isLetterOrNumber() && text[end].isDigit() == text[begin].isDigit())
        ++end;
    const QStringView component = text.sliced(begin, end - begin);
    text = text.sliced(end);
    return component;
}

bool isNumber(QStringView component)
{
    return !component.isEmpty() && component[0].isDigit();
}

QStringView withoutLeadingZeros(QStringView number)
{
    while (number.startsWith(u'0'))
        number = number.sliced(1);
    return number;
}

/// Without what has no weight: a "v" in front and build metadata.
QStringView normalized(QStringView version)
{
    version = version.trimmed();
    if (version.startsWith(u'v', Qt::CaseInsensitive))
        version = version.sliced(1);
    const qsizetype plus = version.indexOf(u'+');
    return plus < 0 ? version : version.first(plus);
}

std::weak_ordering compareComponents(QStringView one, QStringView other)
{
    if (isNumber(one) || isNumber(other)) {
        // Any number comes after any word, and after nothing unless it is 0.
        const bool oneIsWord = !one.isEmpty() && !isNumber(one);
        const bool otherIsWord = !other.isEmpty() && !isNumber(other);
        if (oneIsWord != otherIsWord)
            return otherIsWord <=> oneIsWord;
        one = withoutLeadingZeros(one);
        other = withoutLeadingZeros(other);
        if (one.size() != other.size())
            return one.size() <=> other.size();
        return one.compare(other) <=> 0;
    }
    if (one.isEmpty() || other.isEmpty())
        return one.isEmpty() <=> other.isEmpty();
    return one.compare(other, Qt::CaseInsensitive) <=> 0;
}

QUrl opened(const QString &link, const QUrl &base)
{
    if (link.trimmed().isEmpty())
        return {};
    const QUrl url = base.resolved(QUrl(link.trimmed()));
    return Appcast::mayBeOpened(url, base) ? url : QUrl();
}

/// An item while it is read.
struct Draft
{
    AppcastItem item;
    QString system;
    QString minimumSystem;
    QString channel;
    QUrl enclosure;

    bool isForUs() const
    {
        if (!channel.isEmpty() || (!system.isEmpty() && system.compare(ownSystem, Qt::CaseInsensitive) != 0))
            return false;
        // A version number of a system that is not named says nothing about this one.
        return system.isEmpty() || minimumSystem.isEmpty() ||
               compareVersions(QSysInfo::kernelVersion(), minimumSystem) >= 0;
    }
};

/// What an attribute or an element of this name says, wherever it stands.
void takeField(Draft &draft, QStringView name, const QString &value)
{
    const struct
    {
        const char *name;
        QString &field;
    } fields[] = {{"version", draft.item.version},
                  {"shortVersionString", draft.item.shortVersion},
                  {"minimumSystemVersion", draft.minimumSystem},
                  {"os", draft.system},
                  {"channel", draft.channel}};
    for (const auto &[fieldName, field] : fields) {
        if (name == QLatin1String(fieldName) && !value.trimmed().isEmpty())
            field = value.simplified();
    }
}

/// The reader's own function calls itself for each level of nesting.
QString elementText(QXmlStreamReader &xml)
{
    QString text;
    for (int depth = 1; depth > 0 && !xml.atEnd();) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement)
            ++depth;
        else if (token == QXmlStreamReader::EndElement)
            --depth;
        else if (token == QXmlStreamReader::Characters)
            text += xml.text();
    }
    return text;
}

void readElement(QXmlStreamReader &xml, Draft &draft, const QUrl &address)
{
    const QString name = xml.name().toString();
    const bool isOfFeed = xml.namespaceUri().isEmpty(); // and not an extension's
    if (name == QLatin1String("enclosure")) {
        const auto attributes = xml.attributes();
        for (const QXmlStreamAttribute &attribute : attributes)
            takeField(draft, attribute.name(), attribute.value().toString());
        draft.enclosure = opened(attributes.value(QLatin1String("url")).toString(), address);
        xml.skipCurrentElement();
        return;
    }
    const QString text = elementText(xml);
    if (name == QLatin1String("title") && isOfFeed)
        draft.item.title = text.simplified().left(longestTitle);
    else if (name == QLatin1String("link") && isOfFeed)
        draft.item.page = opened(text, address);
    else if (name == QLatin1String("releaseNotesLink") && draft.item.notesLink.isEmpty())
        draft.item.notesLink = opened(text, address);
    else if (name == QLatin1String("description") && isOfFeed)
        draft.item.notes = Appcast::plainText(text);
    else
        takeField(draft, name, text);
}

std::optional<AppcastItem> readItem(QXmlStreamReader &xml, const QUrl &address)
{
    Draft draft;
    while (xml.readNextStartElement())
        readElement(xml, draft, address);
    AppcastItem &item = draft.item;
    if (item.version.isEmpty())
        item.version = item.shortVersion;
    if (item.version.isEmpty()) {
        static const QRegularExpression number(QStringLiteral("\\d+(?:\\.\\d+)+(?:[\\w.+-]*\\w)?"));
        item.version = number.match(item.title).captured();
    }
    if (item.page.isEmpty())
        item.page = draft.enclosure;
    const bool isVersion = !item.version.isEmpty() && item.version.size() <= longestVersion &&
                           item.shortVersion.size() <= longestVersion;
    return isVersion && draft.isForUs() ? std::optional(item) : std::nullopt;
}

bool isBuildNumber(const QString &version)
{
    return !version.contains(u'.');
}

/// What people read decides; a version with points is such a one.
QStringView readableVersion(const AppcastItem &item)
{
    return item.shortVersion.isEmpty() && !isBuildNumber(item.version) ? item.version : item.shortVersion;
}

/// A total order: an item that tells less comes before one that tells more, so that none of three can be
/// newer than the next all around.
std::weak_ordering compareItems(const AppcastItem &one, const AppcastItem &other)
{
    const QStringView readable = readableVersion(one);
    const QStringView otherReadable = readableVersion(other);
    if (readable.isEmpty() != otherReadable.isEmpty())
        return otherReadable.isEmpty() <=> readable.isEmpty();
    if (const auto order = compareVersions(readable, otherReadable); order != 0)
        return order;
    if (isBuildNumber(one.version) != isBuildNumber(other.version))
        return isBuildNumber(one.version) <=> isBuildNumber(other.version);
    return compareVersions(one.version, other.version);
}

bool isOnThisMachine(const QUrl &url)
{
    static const QStringList names{QStringLiteral("localhost"), QStringLiteral("127.0.0.1"),
                                   QStringLiteral("::1")};
    return names.contains(url.host());
}

QString decoded(QStringView entity)
{
    static const struct
    {
        const char *name;
        char16_t character;
    } known[] = {{"amp", u'&'},        {"lt", u'<'},       {"gt", u'>'},          {"quot", u'"'},
                 {"apos", u'\''},      {"nbsp", u' '},     {"hellip", u'\u2026'}, {"ndash", u'\u2013'},
                 {"mdash", u'\u2014'}, {"bull", u'\u2022'}};
    for (const auto &[name, character] : known) {
        if (entity == QLatin1String(name))
            return QChar(character);
    }
    if (!entity.startsWith(u'#'))
        return {};
    const bool isHex = entity.mid(1, 1).compare(u'x', Qt::CaseInsensitive) == 0;
    bool isCode = false;
    const uint code = entity.mid(isHex ? 2 : 1).toUInt(&isCode, isHex ? 16 : 10);
    const bool isShown = isCode && code >= 0x20 && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
    return isShown ? QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1) : QString();
}

/// Where a link leads, when that is a web page.
QString webAddress(QStringView tag)
{
    static const QRegularExpression address(QStringLiteral("\\shref\\s*=\\s*[\"']?(https?://[^\\s\"'<>]+)"),
                                            QRegularExpression::CaseInsensitiveOption);
    return address.match(tag).captured(1).replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

} // namespace

std::weak_ordering compareVersions(QStringView one, QStringView other)
{
    one = normalized(one);
    other = normalized(other);
    while (!one.isEmpty() || !other.isEmpty()) {
        if (const auto order = compareComponents(nextComponent(one), nextComponent(other)); order != 0)
            return order;
    }
    return std::weak_ordering::equivalent;
}

bool Appcast::mayBeLoaded(const QUrl &address)
{
    if (!address.isValid() || address.host().isEmpty())
        return false;
    return address.scheme() == QLatin1String("https") ||
           (isOnThisMachine(address) && address.scheme() == QLatin1String("http"));
}

bool Appcast::mayBeOpened(const QUrl &link, const QUrl &feed)
{
    return mayBeLoaded(link) && (link.scheme() == QLatin1String("https") || isOnThisMachine(feed));
}

std::optional<QList<AppcastItem>> Appcast::parse(const QByteArray &feed, const QUrl &address)
{
    QXmlStreamReader xml(feed);
    QList<AppcastItem> items;
    bool hasChannel = false;
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("rss"))
        return std::nullopt;
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("channel")) {
            xml.skipCurrentElement();
            continue;
        }
        hasChannel = true;
        while (xml.readNextStartElement()) {
            if (xml.name() != QLatin1String("item") || items.size() == mostItems)
                xml.skipCurrentElement();
            else if (const auto item = readItem(xml, address))
                items << *item;
        }
    }
    return xml.hasError() || !hasChannel ? std::nullopt : std::optional(items);
}

bool Appcast::isNewer(const AppcastItem &item, QStringView shortVersion, QStringView version)
{
    const QStringView readable = readableVersion(item);
    if (readable.isEmpty())
        return compareVersions(item.version, version) > 0;
    const auto order = compareVersions(readable, shortVersion);
    // Another build of the same version.
    return order > 0 ||
           (order == 0 && isBuildNumber(item.version) && compareVersions(item.version, version) > 0);
}

std::optional<AppcastItem> Appcast::newest(const QList<AppcastItem> &items, QStringView shortVersion,
                                           QStringView version)
{
    std::optional<AppcastItem> newest;
    for (const AppcastItem &item : items) {
        if (isNewer(item, shortVersion, version) && (!newest || compareItems(item, *newest) > 0))
            newest = item;
    }
    return newest;
}

QString Appcast::plainText(QStringView html)
{
    static const QRegularExpression unseen(QStringLiteral("^(script|style|head|title)$"));
    static const QRegularExpression lines(
        QStringLiteral("^(br|p|div|h[1-6]|ul|ol|tr|table|section|article|blockquote|pre|hr)$"));
    QString text;
    QString link; // of the text that is being read
    for (qsizetype i = 0; i < html.size() && text.size() < longestNotes;) {
        if (html[i] == u'&') {
            const qsizetype end = html.sliced(i, std::min<qsizetype>(12, html.size() - i)).indexOf(u';');
            const QString character = end > 0 ? decoded(html.sliced(i + 1, end - 1)) : QString();
            text += character.isEmpty() ? QString(html[i]) : character;
            i += character.isEmpty() ? 1 : end + 1;
            continue;
        }
        const bool isTag = html[i] == u'<' && i + 1 < html.size() &&
                           (html[i + 1].isLetter() || html[i + 1] == u'/' || html[i + 1] == u'!');
        if (!isTag) {
            text += html[i++];
            continue;
        }
        const bool isComment = html.sliced(i).startsWith(QLatin1String("<!--"));
        const qsizetype close = isComment ? html.indexOf(QLatin1String("-->"), i) : html.indexOf(u'>', i);
        if (close < 0)
            break;
        const QStringView tag = html.sliced(i + 1, close - i - 1);
        const bool isEnd = tag.startsWith(u'/');
        qsizetype length = isEnd ? 1 : 0;
        while (length < tag.size() && tag[length].isLetterOrNumber())
            ++length;
        const QString name = tag.sliced(isEnd ? 1 : 0, length - (isEnd ? 1 : 0)).toString().toLower();
        i = close + (isComment ? 3 : 1);
        if (name == QLatin1String("a")) {
            if (isEnd && !link.isEmpty() && !text.endsWith(link))
                text += QStringLiteral(" (%1)").arg(link);
            link = isEnd ? QString() : webAddress(tag);
        }
        if (name == QLatin1String("li"))
            text += isEnd ? QString() : QStringLiteral("\n\u2022 ");
        else if (lines.match(name).hasMatch())
            text += u'\n';
        if (!isEnd && unseen.match(name).hasMatch()) {
            const qsizetype end = html.indexOf(QString(QStringLiteral("</") + name), i, Qt::CaseInsensitive);
            i = end < 0 ? html.size() : end;
        }
    }
    static const QRegularExpression blanks(QStringLiteral("[ \t\r\f]+"));
    static const QRegularExpression aroundBreaks(QStringLiteral(" ?\n ?"));
    static const QRegularExpression manyBreaks(QStringLiteral("\n{3,}"));
    return text.replace(blanks, QStringLiteral(" "))
        .replace(aroundBreaks, QStringLiteral("\n"))
        .replace(manyBreaks, QStringLiteral("\n\n"))
        .trimmed()
        .left(longestNotes);
}

} // namespace tovi
