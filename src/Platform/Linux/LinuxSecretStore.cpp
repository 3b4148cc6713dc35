// SPDX-License-Identifier: MIT
#include "Platform/Linux/LinuxSecretStore.h"

#include "Platform/Platform.h"
#include "Platform/SystemLog.h"

namespace tovi {

namespace {
// A service that hangs is left alone for a while, so that a row of operations waits for it only once.
constexpr auto pauseAfterHang = std::chrono::seconds(10);
} // namespace

LinuxSecretStore::LinuxSecretStore(const QString &filePath, SystemLog &log)
    : m_file(filePath, log)
    , m_log(log)
{}

template <class Operation>
auto LinuxSecretStore::ask(Operation operation)
{
    using Answer = decltype(operation());
    const Clock &clock = Platform::current().clock();
    if (clock.now() < m_askAgain)
        return Answer{};
    const Answer answer = operation();
    if (m_service.access() == Access::Hung)
        m_askAgain = clock.now() + pauseAfterHang;
    if (m_service.access() != Access::Open)
        noteFallback();
    return answer;
}

SecretStore::Item LinuxSecretStore::find(const QString &service, const QString &account)
{
    const std::scoped_lock lock(m_mutex);
    moveOver();
    if (const auto entry = m_file.find(service, account))
        return entry->data ? Item{Status::Found, *entry->data} : Item{};
    // Without a service, too, nothing is known: it may start after us.
    const auto item = ask([&] { return std::optional(m_service.find(service, account)); });
    if (m_service.access() == Access::Absent)
        return {Status::Unavailable, {}};
    return item.value_or(Item{Status::Unavailable, {}});
}

bool LinuxSecretStore::add(const QString &service, const QString &account, const QByteArray &data)
{
    const std::scoped_lock lock(m_mutex);
    return change({service, account, data});
}

bool LinuxSecretStore::remove(const QString &service, const QString &account)
{
    const std::scoped_lock lock(m_mutex);
    return change({service, account, std::nullopt});
}

bool LinuxSecretStore::change(const Entry &entry)
{
    if (!putIntoService(entry))
        return m_file.put(entry);
    return m_file.drop(entry.service, entry.account);
}

bool LinuxSecretStore::putIntoService(const Entry &entry)
{
    return ask([&] {
        return entry.data ? m_service.add(entry.service, entry.account, *entry.data)
                          : m_service.remove(entry.service, entry.account);
    });
}

void LinuxSecretStore::moveOver()
{
    for (const Entry &entry : m_file.entries()) {
        if (!putIntoService(entry))
            return;
        m_file.drop(entry.service, entry.account);
    }
}

void LinuxSecretStore::noteFallback()
{
    if (std::exchange(m_hasNotedFallback, true))
        return;
    const auto reason = [this] {
        switch (m_service.access()) {
        case Access::Absent:
            return QStringLiteral("there is no Secret Service");
        case Access::Locked:
            return QStringLiteral("the Secret Service's collection cannot be opened without a prompt");
        case Access::Hung:
            return QStringLiteral("the Secret Service does not answer");
        default:
            return QStringLiteral("the Secret Service fails");
        }
    }();
    m_log.write(QStringLiteral("Tovi: %1; until it can be used, API keys go to the owner-only file %2")
                    .arg(reason, m_file.path()));
}

} // namespace tovi
