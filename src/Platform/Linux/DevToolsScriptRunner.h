// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>

#include "Platform/Linux/ActiveWindow.h"
#include "Platform/ScriptRunner.h"

namespace tovi {

class Workspace;

/// Runs the one script that makes sense on this desktop: the frontmost browser of the Chromium family is
/// asked for the selection of its active page, through the DevTools port that its user opened. Everything
/// else yields none and touches nothing.
class DevToolsScriptRunner final : public ScriptRunner
{
public:
    DevToolsScriptRunner(Workspace &workspace, std::shared_ptr<ActiveWindowSource> activeWindow,
                         std::chrono::milliseconds limit = std::chrono::seconds(1));

    std::optional<QString> run(const QString &source) override;

private:
    Workspace &m_workspace;
    std::shared_ptr<ActiveWindowSource> m_activeWindow;
    std::chrono::milliseconds m_limit;
};

} // namespace tovi
