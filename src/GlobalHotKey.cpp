// SPDX-License-Identifier: MIT
#include "GlobalHotKey.h"

#include <map>

#include "Platform/DispatchQueue.h"
#include "Platform/HotKeyCenter.h"
#include "Platform/Platform.h"

namespace tovi {

namespace {

/// The actions of all registrations. The system's handler holds them weakly: it outlives them at quit.
class Registry
{
public:
    Registry()
    {
        Platform::current().hotKeyCenter().setHandler([weak = std::weak_ptr(m_actions)](quint32 number) {
            const auto actions = weak.lock();
            if (!actions)
                return;
            if (const auto it = actions->find(number); it != actions->end())
                asyncOnMain(it->second);
        });
    }

    /// Numbers are never used twice, not even after a refusal.
    quint32 add(std::function<void()> action)
    {
        const quint32 number = m_nextNumber++;
        m_actions->emplace(number, std::move(action));
        return number;
    }
    void remove(quint32 number) { m_actions->erase(number); }

private:
    using Actions = std::map<quint32, std::function<void()>>;
    std::shared_ptr<Actions> m_actions = std::make_shared<Actions>();
    quint32 m_nextNumber = 1;
};

Registry &registry()
{
    return Platform::current().shared<Registry>();
}

} // namespace

std::unique_ptr<GlobalHotKey> GlobalHotKey::make(quint32 keyCode, quint32 modifiers,
                                                 std::function<void()> action)
{
    // The action is known before the system can report the first press.
    const quint32 number = registry().add(std::move(action));
    const auto answer = Platform::current().hotKeyCenter().registerHotKey(number, keyCode, modifiers);
    if (answer != HotKeyCenter::Registration::Registered) {
        registry().remove(number);
        return nullptr;
    }
    return std::unique_ptr<GlobalHotKey>(new GlobalHotKey(number));
}

GlobalHotKey::~GlobalHotKey()
{
    Platform::current().hotKeyCenter().unregisterHotKey(m_id);
    registry().remove(m_id);
}

} // namespace tovi
