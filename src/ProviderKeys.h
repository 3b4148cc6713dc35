// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QHash>
#include <QUuid>

#include "Platform/DispatchQueue.h"
#include "ProviderConfig.h"

namespace tovi {

/// The engines' API keys on their way between the key store and the engine list. The store is slow and may
/// be locked, so reads and writes run in order on a worker; and a key is written only when the user changed
/// it, so that one that could not be read is never overwritten with nothing. Main thread.
class ProviderKeys
{
public:
    using Keys = QHash<QUuid, QString>;

    /// The handler takes the keys that were read; it runs on the main thread.
    explicit ProviderKeys(std::function<void(const Keys &)> loaded);

    void load(const QList<QUuid> &ids);
    /// Reads the key of early versions for a new engine, and stores it as the engine's own.
    void loadLegacy(const QUuid &id);
    /// Finishes when reading the key has ended; none when there is nothing to wait for. A read that failed
    /// before is tried again.
    std::optional<QFuture<void>> loading(const QUuid &id);

    /// Takes note of the keys that differ from what the engines had before: the user's edits.
    void noteEdits(const QList<ProviderConfig> &engines);
    /// Queues the edited keys for the store. One that cannot be stored is tried again the next time.
    void save(const QList<ProviderConfig> &engines);
    void remove(const QUuid &id);
    /// Blocks until the queued work is done or the time is over (quitting).
    void finish(std::chrono::milliseconds limit);

private:
    struct Entry
    {
        static Entry unread(const QString &account);
        QString value; ///< as the engine list has it
        QString account;
        bool isRead = true;
        bool isEdited = false;
        std::optional<QFuture<void>> reading;
    };
    struct Reading;
    void read(const QList<QUuid> &ids);
    void finishReading(const QList<Reading> &readings);
    void write(const QUuid &id, const QString &value);
    void finishWriting(const QUuid &id, const QString &value);

    std::function<void(const Keys &)> m_loaded;
    QHash<QUuid, Entry> m_entries;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
    DispatchQueue m_queue{QStringLiteral("com.brevoll.tovi.keys")};
};

} // namespace tovi
