// SPDX-License-Identifier: MIT
#include "ProviderKeys.h"

#include <QSemaphore>

#include "Keychain.h"

namespace tovi {

struct ProviderKeys::Reading
{
    QUuid id;
    QString account;
    Keychain::Value result;
};

ProviderKeys::Entry ProviderKeys::Entry::unread(const QString &account)
{
    Entry entry;
    entry.account = account;
    entry.isRead = false;
    return entry;
}

ProviderKeys::ProviderKeys(std::function<void(const Keys &)> loaded)
    : m_loaded(std::move(loaded))
{}

void ProviderKeys::load(const QList<QUuid> &ids)
{
    for (const QUuid &id : ids)
        m_entries.insert(id, Entry::unread(Keychain::providerAccount(id)));
    read(ids);
}

void ProviderKeys::loadLegacy(const QUuid &id)
{
    m_entries.insert(id, Entry::unread(Keychain::legacyAccount));
    read({id});
}

std::optional<QFuture<void>> ProviderKeys::loading(const QUuid &id)
{
    const auto it = m_entries.constFind(id);
    if (it == m_entries.cend() || it->isRead || it->isEdited)
        return std::nullopt;
    if (!it->reading)
        read({id});
    return it->reading;
}

void ProviderKeys::read(const QList<QUuid> &ids)
{
    if (ids.isEmpty())
        return;
    // Finishes when its last holder is done, also when that is a queue that ends early.
    const std::shared_ptr<QPromise<void>> promise(new QPromise<void>, [](QPromise<void> *ending) {
        ending->finish();
        delete ending;
    });
    promise->start();
    QList<Reading> readings;
    for (const QUuid &id : ids) {
        Entry &entry = m_entries[id];
        entry.reading = promise->future();
        readings.append({id, entry.account, {}});
    }
    m_queue.async([this, alive = std::weak_ptr(m_alive), promise, readings]() mutable {
        for (Reading &reading : readings)
            reading.result = Keychain::get(reading.account);
        asyncOnMain([this, alive, promise, readings] {
            if (!alive.expired())
                finishReading(readings);
        });
    });
}

void ProviderKeys::finishReading(const QList<Reading> &readings)
{
    Keys keys;
    for (const auto &[id, account, result] : readings) {
        const auto it = m_entries.find(id);
        if (it == m_entries.end())
            continue;
        it->reading.reset();
        if (result.status == SecretStore::Status::Unavailable || it->isEdited)
            continue;
        it->isRead = true;
        if (it->value == result.text)
            continue;
        it->value = result.text;
        keys.insert(id, result.text);
        if (account == Keychain::legacyAccount)
            write(id, result.text);
    }
    if (!keys.isEmpty())
        m_loaded(keys);
}

void ProviderKeys::noteEdits(const QList<ProviderConfig> &engines)
{
    for (const ProviderConfig &engine : engines) {
        Entry &entry = m_entries[engine.id];
        if (entry.value != engine.apiKey) {
            entry.value = engine.apiKey;
            entry.isEdited = true;
        }
    }
}

void ProviderKeys::save(const QList<ProviderConfig> &engines)
{
    for (const ProviderConfig &engine : engines) {
        if (m_entries.value(engine.id).isEdited)
            write(engine.id, engine.apiKey);
    }
}

void ProviderKeys::remove(const QUuid &id)
{
    m_entries.remove(id);
    m_queue.async([account = Keychain::providerAccount(id)] { Keychain::set({}, account); });
}

void ProviderKeys::write(const QUuid &id, const QString &value)
{
    m_entries[id].isEdited = true;
    m_queue.async([this, alive = std::weak_ptr(m_alive), id, value] {
        if (!Keychain::set(value, Keychain::providerAccount(id)))
            return;
        asyncOnMain([this, alive, id, value] {
            if (!alive.expired())
                finishWriting(id, value);
        });
    });
}

void ProviderKeys::finishWriting(const QUuid &id, const QString &value)
{
    const auto it = m_entries.find(id);
    if (it == m_entries.end() || it->value != value)
        return;
    it->isEdited = false;
    it->isRead = true;
}

void ProviderKeys::finish(std::chrono::milliseconds limit)
{
    auto done = std::make_shared<QSemaphore>();
    m_queue.async([done] { done->release(); });
    done->tryAcquire(1, static_cast<int>(limit.count()));
}

} // namespace tovi
