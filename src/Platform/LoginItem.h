// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

namespace tovi {

/// The application's own entry among the programs that start with the session. Main thread.
class LoginItem
{
public:
    enum class Status {
        NotRegistered,
        Enabled,
        RequiresApproval, ///< registered, but switched off by the desktop or the user
        NotFound,         ///< the program is not installed, so there is nothing to register
    };

    virtual ~LoginItem() = default;

    virtual Status status() const = 0;
    /// The system's error text on failure, none on success.
    virtual std::optional<QString> registerItem() = 0;
    virtual std::optional<QString> unregisterItem() = 0;
};

} // namespace tovi
