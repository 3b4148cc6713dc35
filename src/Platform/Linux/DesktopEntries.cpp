// SPDX-License-Identifier: MIT
#include "Platform/Linux/DesktopEntries.h"

#include <algorithm>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QThread>
#include <QThreadPool>

#include "Platform/Linux/LocaleNames.h"

namespace tovi {

namespace {

constexpr qint64 largestEntry = 1 << 20; // no real entry comes near; guards against a wrong file

/// Undoes the escapes of a value; all of its white space becomes a blank.
QString unescaped(const QString &value)
{
    if (!value.contains(QLatin1Char('\\')))
        return value;
    QString result;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != QLatin1Char('\\') || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        switch (value[++i].unicode()) {
        case 's':
        case 'n':
        case 't':
        case 'r':
            result += QLatin1Char(' ');
            break;
        default:
            result += value[i];
        }
    }
    return result;
}

/// The program an Exec line starts, past "env" and its assignments.
QString executableOf(const QString &exec)
{
    QStringList words;
    QString word;
    bool quoted = false;
    for (const QChar c : exec) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
        } else if (c.isSpace() && !quoted) {
            words << std::exchange(word, {});
        } else {
            word += c;
        }
    }
    words << word;
    for (const QString &candidate : words) {
        const QString base = candidate.section(QLatin1Char('/'), -1);
        if (!base.isEmpty() && base != QLatin1String("env") && !candidate.contains(QLatin1Char('=')))
            return base;
    }
    return {};
}

struct ParsedEntry
{
    DesktopEntry entry;
    bool isApplication = false;
    bool hidden = false;
    bool noDisplay = false;
};

ParsedEntry parse(const QByteArray &data, const QStringList &languages)
{
    ParsedEntry parsed;
    bool inGroup = false;
    qsizetype bestName = languages.size() + 1;
    for (const QByteArray &raw : data.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.startsWith('[')) {
            if (inGroup)
                break; // the entry's own group comes first
            inGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inGroup || equals <= 0 || line.startsWith('#'))
            continue;
        const QByteArray key = line.left(equals).trimmed();
        const auto value = [&] { return unescaped(QString::fromUtf8(line.mid(equals + 1).trimmed())); };
        if (key == "Type") {
            parsed.isApplication = value() == QLatin1String("Application");
        } else if (key == "Name") {
            if (bestName > languages.size()) {
                bestName = languages.size();
                parsed.entry.name = value();
            }
        } else if (key.startsWith("Name[") && key.endsWith(']')) {
            const qsizetype rank = languages.indexOf(QString::fromUtf8(key.mid(5, key.size() - 6)));
            if (rank >= 0 && rank < bestName) {
                bestName = rank;
                parsed.entry.name = value();
            }
        } else if (key == "StartupWMClass") {
            parsed.entry.startupWMClass = value();
        } else if (key == "Exec") {
            parsed.entry.executable = executableOf(value());
        } else if (key == "Categories") {
            parsed.entry.categories = value().split(QLatin1Char(';'), Qt::SkipEmptyParts);
        } else if (key == "Hidden") {
            parsed.hidden = value() == QLatin1String("true");
        } else if (key == "NoDisplay") {
            parsed.noDisplay = value() == QLatin1String("true");
        }
    }
    return parsed;
}

QList<QPair<QString, QDateTime>> stamps(const QStringList &directories)
{
    QList<QPair<QString, QDateTime>> result;
    for (const QString &directory : directories)
        result.append({directory, QFileInfo(directory).lastModified()});
    return result;
}

} // namespace

struct DesktopEntries::Index
{
    std::vector<DesktopEntry> entries;
    // Keys in lower case; the first entry to claim a key keeps it.
    QHash<QString, size_t> byId, byClass, byLastIdPart, byExecutable;
    QList<QPair<QString, QDateTime>> readFrom; // every directory, also missing ones

    const DesktopEntry *get(const QHash<QString, size_t> &by, const QString &key) const
    {
        if (key.isEmpty())
            return nullptr;
        const auto it = by.constFind(key.toLower());
        return it == by.constEnd() ? nullptr : &entries[*it];
    }

    static std::shared_ptr<const Index> read(const QStringList &roots, const QStringList &languages);
};

std::shared_ptr<const DesktopEntries::Index> DesktopEntries::Index::read(const QStringList &roots,
                                                                         const QStringList &languages)
{
    auto index = std::make_shared<Index>();
    std::vector<DesktopEntry> notShown; // helpers of an application: only where nothing better claims a key
    QSet<QString> seen;                 // an entry shadows its namesakes in later directories
    for (const QString &root : roots) {
        QStringList folders{root};
        for (qsizetype i = 0; i < folders.size(); ++i) {
            index->readFrom.append(stamps({folders[i]}));
            const QDir folder(folders[i]);
            // A symbolic link to a directory could lead in a circle.
            for (const QFileInfo &file :
                 folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks))
                folders << file.filePath();
            const auto files =
                folder.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files | QDir::Readable);
            for (const QFileInfo &info : files) {
                QString id = QDir(root).relativeFilePath(info.filePath()).chopped(8);
                id.replace(QLatin1Char('/'), QLatin1Char('-'));
                QFile file(info.filePath());
                if (seen.contains(id) || info.size() > largestEntry || !file.open(QIODevice::ReadOnly))
                    continue;
                seen.insert(id);
                ParsedEntry parsed = parse(file.read(largestEntry), languages);
                if (!parsed.isApplication || parsed.hidden)
                    continue;
                parsed.entry.id = id;
                (parsed.noDisplay ? notShown : index->entries).push_back(std::move(parsed.entry));
            }
        }
    }
    std::ranges::move(notShown, std::back_inserter(index->entries));
    const auto claim = [](QHash<QString, size_t> &by, const QString &key, size_t entry) {
        if (!key.isEmpty() && !by.contains(key.toLower()))
            by.insert(key.toLower(), entry);
    };
    for (size_t i = 0; i < index->entries.size(); ++i) {
        const DesktopEntry &entry = index->entries[i];
        claim(index->byId, entry.id, i);
        claim(index->byClass, entry.startupWMClass, i);
        claim(index->byLastIdPart, entry.id.section(QLatin1Char('.'), -1), i);
        claim(index->byExecutable, entry.executable, i);
    }
    return index;
}

struct DesktopEntries::State
{
    const QStringList roots;
    const QStringList languages;
    std::mutex mutex; // of current
    std::shared_ptr<const Index> current;
    std::mutex reading; // one reader at a time

    std::shared_ptr<const Index> snapshot()
    {
        const std::scoped_lock lock(mutex);
        return current;
    }
    bool isStale(const Index &index) const
    {
        return std::ranges::any_of(index.readFrom, [](const auto &stamp) {
            return QFileInfo(stamp.first).lastModified() != stamp.second;
        });
    }
    std::shared_ptr<const Index> refresh()
    {
        const std::scoped_lock one(reading);
        auto index = snapshot();
        if (index && !isStale(*index))
            return index;
        index = Index::read(roots, languages);
        const std::scoped_lock lock(mutex);
        return current = index;
    }
};

DesktopEntries::DesktopEntries(QStringList directories, QStringList languages)
    : m_state(new State{std::move(directories), std::move(languages), {}, {}, {}})
{}

DesktopEntries::~DesktopEntries() = default;

void DesktopEntries::prefetch()
{
    QThreadPool::globalInstance()->start([state = m_state] { state->refresh(); });
}

std::shared_ptr<const DesktopEntries::Index> DesktopEntries::index()
{
    const auto *app = QCoreApplication::instance();
    const bool onMain = app && QThread::currentThread() == app->thread();
    const auto current = m_state->snapshot();
    if (!onMain || !current)
        return m_state->refresh();
    if (m_state->isStale(*current))
        prefetch();
    return current;
}

std::optional<DesktopEntry> DesktopEntries::find(const ApplicationHints &hints)
{
    const auto all = index();
    // The instance before the class: web applications share their browser's class.
    const QString names[] = {hints.windowInstance, hints.windowClass};
    if (const auto *entry = all->get(all->byId, hints.applicationId))
        return *entry;
    for (const auto *by : {&all->byClass, &all->byId, &all->byLastIdPart, &all->byExecutable}) {
        for (const QString &name : names) {
            if (const auto *entry = all->get(*by, name))
                return *entry;
        }
    }
    if (const auto *entry = all->get(all->byExecutable, hints.processName))
        return *entry;
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::byId(const QString &id)
{
    const auto all = index();
    const auto *entry = all->get(all->byId, id);
    return entry ? std::optional(*entry) : std::nullopt;
}

QStringList DesktopEntries::standardDirectories()
{
    const auto variable = [](const char *name, const QString &fallback) {
        const QString value = qEnvironmentVariable(name);
        return value.isEmpty() ? fallback : value;
    };
    QStringList roots{variable("XDG_DATA_HOME", QDir::homePath() + QStringLiteral("/.local/share"))};
    roots += variable("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"))
                 .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    QStringList directories;
    for (const QString &root : std::as_const(roots)) {
        // Relative paths are not valid here.
        if (QDir::isAbsolutePath(root))
            directories << QDir::cleanPath(root) + QStringLiteral("/applications");
    }
    directories.removeDuplicates();
    return directories;
}

QStringList DesktopEntries::messageLanguages()
{
    QStringList names;
    for (const QString &locale : LocaleNames::messageLocales()) {
        const LocaleNames::Parts parts = LocaleNames::split(locale);
        if (parts.language.isEmpty())
            continue;
        const auto joined = [&](bool territory, bool modifier) {
            QString name = parts.language;
            if (territory)
                name += QLatin1Char('_') + parts.territory;
            if (modifier)
                name += QLatin1Char('@') + parts.modifier;
            return name;
        };
        const bool territory = !parts.territory.isEmpty();
        const bool modifier = !parts.modifier.isEmpty();
        if (territory && modifier)
            names << joined(true, true);
        if (territory)
            names << joined(true, false);
        if (modifier)
            names << joined(false, true);
        names << joined(false, false);
    }
    names.removeDuplicates();
    return names;
}

} // namespace tovi
