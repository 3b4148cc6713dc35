// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QJsonObject>
#include <QString>

namespace tovi {

class SystemLog;

/// An owner-only file with one JSON object, which people and accidents may change at any time. Blocks for
/// the disk. One thread at a time.
class JsonFile
{
public:
    struct Content
    {
        enum class State {
            Missing, ///< or kept under another name just now
            Read,
            Blocked, ///< something unreadable is there and could not be moved: writing would destroy it
        };
        State state = State::Missing;
        QJsonObject object;
    };

    JsonFile(const QString &path, SystemLog &log);

    QString path() const { return m_path; }
    /// What cannot be read as a JSON object is kept beside the file under a new name, and logged.
    Content read();
    /// Replaces the file at once or not at all; a link stays a link. The error's text, none on success.
    std::optional<QString> write(const QJsonObject &object);
    void remove();

private:
    bool keepAside();

    QString m_path;
    SystemLog &m_log;
};

} // namespace tovi
