// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>

#include "Platform/Clock.h"
#include "Platform/Linux/FileSecretStore.h"
#include "Platform/Linux/LibsecretStore.h"

namespace tovi {

/// The Secret Service where it can be used without a prompt, else a file. What the file holds is newer than
/// what the service holds, and moves there as soon as that is possible. A secret that may lie in a service
/// which cannot be asked now is Unavailable, not missing.
class LinuxSecretStore final : public SecretStore
{
public:
    LinuxSecretStore(const QString &filePath, SystemLog &log);

    Item find(const QString &service, const QString &account) override;
    bool add(const QString &service, const QString &account, const QByteArray &data) override;
    bool remove(const QString &service, const QString &account) override;

private:
    using Access = LibsecretStore::Access;
    using Entry = FileSecretStore::Entry;
    template <class Operation>
    auto ask(Operation operation);
    bool putIntoService(const Entry &entry);
    bool change(const Entry &entry);
    void moveOver();
    void noteFallback();

    std::mutex m_mutex;
    LibsecretStore m_service;
    FileSecretStore m_file;
    SystemLog &m_log;
    Clock::Time m_askAgain = Clock::distantPast();
    bool m_hasNotedFallback = false;
};

} // namespace tovi
