// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tovi {

/// Ends something when destroyed: an observer, a monitor, a grab. Movable, not copyable.
class Subscription
{
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end)
        : m_end(std::move(end))
    {}
    Subscription(Subscription &&other) noexcept
        : m_end(std::exchange(other.m_end, nullptr))
    {}
    Subscription &operator=(Subscription &&other) noexcept
    {
        if (this != &other) {
            reset();
            m_end = std::exchange(other.m_end, nullptr);
        }
        return *this;
    }
    ~Subscription() { reset(); }

    void reset()
    {
        if (auto end = std::exchange(m_end, nullptr))
            end();
    }
    explicit operator bool() const { return static_cast<bool>(m_end); }

private:
    std::function<void()> m_end;
};

/// A list of handlers. One thread. Handlers may subscribe, unsubscribe and destroy the subject while it
/// emits; a handler that is removed during an emission is not called any more in it.
template <class... Args>
class Subject
{
public:
    using Handler = std::function<void(Args...)>;

    [[nodiscard]] Subscription subscribe(Handler handler)
    {
        auto entry = std::make_shared<Handler>(std::move(handler));
        m_state->push_back(entry);
        return Subscription([weak = std::weak_ptr(m_state), entry] {
            *entry = nullptr;
            if (auto state = weak.lock())
                std::erase(*state, entry);
        });
    }

    void emitToAll(Args... args) const
    {
        const std::vector<std::shared_ptr<Handler>> handlers = *m_state;
        for (const auto &handler : handlers) {
            if (*handler) {
                const Handler alive = *handler;
                alive(args...);
            }
        }
    }

    bool isEmpty() const { return m_state->empty(); }

private:
    std::shared_ptr<std::vector<std::shared_ptr<Handler>>> m_state =
        std::make_shared<std::vector<std::shared_ptr<Handler>>>();
};

} // namespace tovi
