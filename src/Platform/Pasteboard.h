// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace tovi {

/// The clipboard.
class Pasteboard
{
public:
    virtual ~Pasteboard() = default;

    /// Replaces the contents with one plain text. Main thread; does not wait for anybody.
    virtual void setString(const QString &text) = 0;
};

} // namespace tovi
