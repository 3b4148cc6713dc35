// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QStringList>

namespace tovi {

/// One running program per session: the holder of the bus name. Main thread.
class SingleInstance
{
public:
    enum class Role {
        First,        ///< this process is the one (or there is no session bus to tell)
        HandedOver,   ///< another one runs and has taken the arguments
        Unresponsive, ///< another one runs and does not answer
    };
    using Handler = std::function<void(const QStringList &arguments)>;

    /// Claims the name or hands the arguments to its holder; waits at most two seconds for that one.
    /// The handler later receives the arguments of further starts.
    static Role claim(const QStringList &arguments, Handler handler);
};

} // namespace tovi
