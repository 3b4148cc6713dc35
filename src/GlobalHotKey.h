// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QtGlobal>

namespace tovi {

/// One registered system-wide shortcut; destroying it unregisters. Main thread.
class GlobalHotKey
{
public:
    /// Null when the system refuses. The action runs on the main queue, never inside event dispatch.
    static std::unique_ptr<GlobalHotKey> make(quint32 keyCode, quint32 modifiers,
                                              std::function<void()> action);
    ~GlobalHotKey();
    GlobalHotKey(const GlobalHotKey &) = delete;

    quint32 id() const { return m_id; }

private:
    explicit GlobalHotKey(quint32 id)
        : m_id(id)
    {}
    quint32 m_id;
};

} // namespace tovi
