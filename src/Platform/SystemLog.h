// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tovi {

/// The system log, and stderr where that is a terminal. Any thread. Never give it user text, keys or URLs
/// with queries.
class SystemLog
{
public:
    virtual ~SystemLog() = default;
    virtual void write(const QString &line) = 0;
};

} // namespace tovi
