// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include "Platform/SecretStore.h"

namespace tovi {

/// Secrets in the session's Secret Service. Never prompts: what would need one is Unavailable. Each
/// operation ends within the limit; worker threads, one at a time.
class LibsecretStore final : public SecretStore
{
public:
    /// What stood between the last operation and the default collection.
    enum class Access {
        Open,
        Locked, ///< or not yet made, which needs a prompt as well
        Absent, ///< no service on the session bus, or no session bus
        Failing,
        Hung, ///< no answer within the limit
    };

    explicit LibsecretStore(std::chrono::milliseconds limit = std::chrono::seconds(2));

    Access access() const { return m_access; }

    Item find(const QString &service, const QString &account) override;
    bool add(const QString &service, const QString &account, const QByteArray &data) override;
    bool remove(const QString &service, const QString &account) override;

private:
    class Session;

    std::chrono::milliseconds m_limit;
    Access m_access = Access::Absent;
};

} // namespace tovi
