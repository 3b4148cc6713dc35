// SPDX-License-Identifier: MIT
#include "Platform/Linux/JsonUserDefaults.h"

#include <QSemaphore>

#include "Platform/SystemLog.h"

namespace tovi {

namespace {
constexpr int flushLimit = 5000; // ms
}

JsonUserDefaults::JsonUserDefaults(const QString &path, SystemLog &log)
    : m_file(path, log)
    , m_log(log)
    , m_values(m_file.read().object)
{}

JsonUserDefaults::~JsonUserDefaults()
{
    flush();
}

QJsonValue JsonUserDefaults::stored(const QString &key) const
{
    const std::scoped_lock lock(m_mutex);
    return m_values.value(key);
}

void JsonUserDefaults::write(const QString &key, const QJsonValue &value)
{
    const std::scoped_lock lock(m_mutex);
    if (m_changed.isEmpty() && m_values.contains(key) && m_values.value(key) == value)
        return;
    m_values.insert(key, value);
    m_changed.insert(key);
    queueSave();
}

void JsonUserDefaults::queueSave()
{
    if (!std::exchange(m_isQueued, true))
        m_queue.async([this] { save(); });
}

void JsonUserDefaults::save()
{
    QJsonObject mine;
    QSet<QString> changed;
    {
        const std::scoped_lock lock(m_mutex);
        m_isQueued = false;
        m_isSaving = true;
        mine = m_values;
        changed.swap(m_changed);
    }
    using State = JsonFile::Content::State;
    const auto [state, outside] = m_file.read();
    QJsonObject merged = state == State::Read ? outside : mine;
    for (const QString &key : std::as_const(changed))
        merged.insert(key, mine.value(key));
    std::optional<QString> error;
    if (state == State::Blocked)
        error = QStringLiteral("what is there cannot be read or moved");
    else if (state == State::Missing || merged != outside)
        error = m_file.write(merged);

    if (error && !m_hasFailed)
        m_log.write(QStringLiteral("Tovi: %1 could not be written: %2").arg(m_file.path(), *error));
    m_hasFailed = error.has_value();

    const std::scoped_lock lock(m_mutex);
    m_isSaving = false;
    if (error) {
        m_changed |= changed;
        return;
    }
    for (const QString &key : std::as_const(m_changed))
        merged.insert(key, m_values.value(key));
    m_values = merged;
}

bool JsonUserDefaults::flush()
{
    {
        const std::scoped_lock lock(m_mutex);
        if (!m_changed.isEmpty())
            queueSave();
        else if (!m_isSaving)
            return true;
    }
    auto done = std::make_shared<QSemaphore>();
    m_queue.async([done] { done->release(); });
    if (!done->tryAcquire(1, flushLimit))
        return false;
    const std::scoped_lock lock(m_mutex);
    return m_changed.isEmpty();
}

} // namespace tovi
