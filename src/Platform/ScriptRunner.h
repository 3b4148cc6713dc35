// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QString>

namespace tovi {

/// Runs scripts that ask other applications.
class ScriptRunner
{
public:
    virtual ~ScriptRunner() = default;

    /// The script's result as a text. None for a script that cannot run here, one that fails and one that has
    /// no text. Blocks until the application answers, within the backend's limit: capture queue only.
    virtual std::optional<QString> run(const QString &source) = 0;
};

} // namespace tovi
