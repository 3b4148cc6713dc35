// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

#include <QSet>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/JsonFile.h"
#include "Platform/UserDefaults.h"

namespace tovi {

/// User defaults in one JSON file that people may edit, also while the program runs: each write lays the
/// changed keys over what the file holds then. The disk is written by a worker, without delay.
class JsonUserDefaults final : public UserDefaults
{
public:
    JsonUserDefaults(const QString &path, SystemLog &log);
    /// Flushes.
    ~JsonUserDefaults() override;

    /// Blocks until every change is on the disk. False when it cannot be written, or not in time.
    bool flush();

protected:
    QJsonValue stored(const QString &key) const override;
    void write(const QString &key, const QJsonValue &value) override;

private:
    void save();
    void queueSave();

    JsonFile m_file;
    SystemLog &m_log;
    bool m_hasFailed = false;   ///< worker only
    mutable std::mutex m_mutex; ///< guards what follows; never held during I/O
    QJsonObject m_values;
    QSet<QString> m_changed; ///< not yet on the disk
    bool m_isQueued = false;
    bool m_isSaving = false;
    DispatchQueue m_queue{QStringLiteral("com.brevoll.tovi.defaults")};
};

} // namespace tovi
