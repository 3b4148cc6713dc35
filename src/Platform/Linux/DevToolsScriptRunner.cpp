// SPDX-License-Identifier: MIT
#include "Platform/Linux/DevToolsScriptRunner.h"

#include "Platform/Linux/DevToolsSession.h"
#include "Platform/Workspace.h"

namespace tovi {

namespace {

// Written out here, not shared with who asks: what is run is what this file says, whatever that becomes.
const QLatin1String scriptStart("tell application id \"");
const QLatin1String scriptRest(R"--("
    if (count of windows) is 0 then return ""
    try
        return (execute front window's active tab javascript "window.getSelection().toString()")
    on error
        return ""
    end try
end tell)--");

} // namespace

DevToolsScriptRunner::DevToolsScriptRunner(Workspace &workspace,
                                           std::shared_ptr<ActiveWindowSource> activeWindow,
                                           std::chrono::milliseconds limit)
    : m_workspace(workspace)
    , m_activeWindow(std::move(activeWindow))
    , m_limit(limit)
{}

std::optional<QString> DevToolsScriptRunner::run(const QString &source)
{
    const QDeadlineTimer deadline(m_limit);
    const auto frontmost = m_workspace.frontmostApplication();
    if (!frontmost || source != scriptStart + frontmost->bundleIdentifier + scriptRest)
        return std::nullopt;
    const auto endpoint = DevToolsEndpoint::find(frontmost->bundleIdentifier, frontmost->processIdentifier);
    if (!endpoint)
        return std::nullopt;
    const auto window = m_activeWindow->activeWindow();
    const bool isItsWindow = window && window->processIdentifier == frontmost->processIdentifier;
    DevToolsSession session(deadline);
    if (!session.open(*endpoint))
        return std::nullopt;
    return session.selectedText(isItsWindow ? window->title : QString());
}

} // namespace tovi
