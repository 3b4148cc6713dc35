// SPDX-License-Identifier: MIT
#include "Platform/Linux/JsonFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include "Platform/Linux/AtomicFile.h"
#include "Platform/SystemLog.h"

namespace tovi {

namespace {

constexpr qint64 largestSize = 16 * 1024 * 1024;
constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

/// Replaces the number at the offset, which is too large for a double, by null.
bool dropNumber(QByteArray &json, qsizetype offset)
{
    const auto isPart = [](char c) { return (c >= '0' && c <= '9') || (c && std::strchr("+-.eE", c)); };
    qsizetype first = std::min(offset, json.size());
    qsizetype end = first;
    while (first > 0 && isPart(json[first - 1]))
        --first;
    while (end < json.size() && isPart(json[end]))
        ++end;
    if (first == end)
        return false;
    json.replace(first, end - first, "null");
    return true;
}

std::optional<QJsonObject> parse(QByteArray json)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(json, &error);
        if (document.isObject())
            return document.object();
        if (error.error != QJsonParseError::IllegalNumber || !dropNumber(json, error.offset))
            break;
    }
    return std::nullopt;
}

} // namespace

JsonFile::JsonFile(const QString &path, SystemLog &log)
    : m_path(path)
    , m_log(log)
{}

JsonFile::Content JsonFile::read()
{
    const QFileInfo info(m_path);
    if (!info.exists())
        return {};
    // Opening anything else than a regular file might wait for ever.
    if (info.isFile() && info.size() <= largestSize) {
        QFile file(m_path);
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray bytes = file.read(largestSize);
            if (auto object = file.error() == QFileDevice::NoError ? parse(bytes) : std::nullopt)
                return {Content::State::Read, *object};
        }
    }
    return {keepAside() ? Content::State::Missing : Content::State::Blocked, {}};
}

bool JsonFile::keepAside()
{
    const QFileInfo info(m_path);
    const QString source = info.isFile() ? info.canonicalFilePath() : m_path;
    for (int number = 1; number < 1000; ++number) {
        const QString kept = QStringLiteral("%1.broken-%2").arg(source).arg(number);
        if (QFileInfo::exists(kept) || QFileInfo(kept).isSymLink())
            continue;
        if (!QFile::rename(source, kept))
            break;
        m_log.write(QStringLiteral("Tovi: %1 could not be read; it is kept as %2").arg(source, kept));
        return true;
    }
    return false;
}

std::optional<QString> JsonFile::write(const QJsonObject &object)
{
    const QString folder = QFileInfo(m_path).absolutePath();
    QDir().mkpath(QFileInfo(folder).absolutePath());
    QDir().mkdir(folder, ownerOnly | QFileDevice::ExeOwner);
    return AtomicFile::write(m_path, QJsonDocument(object).toJson(QJsonDocument::Indented), ownerOnly);
}

void JsonFile::remove()
{
    QFile::remove(m_path);
}

} // namespace tovi
