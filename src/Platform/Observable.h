// SPDX-License-Identifier: MIT
#pragma once

#include "Platform/Subscription.h"

namespace tovi {

/// An object whose published fields announce a change before it takes effect. Main thread.
class Observable
{
public:
    Observable() = default;
    Observable(const Observable &) = delete;
    Observable &operator=(const Observable &) = delete;

    /// The handler runs before a published field takes its new value; read fields on the next turn of the
    /// main queue.
    [[nodiscard]] Subscription onWillChange(std::function<void()> handler)
    {
        return m_willChange.subscribe(std::move(handler));
    }

protected:
    ~Observable() = default;

private:
    template <class T>
    friend class Published;
    Subject<> m_willChange;
};

/// One published field of an Observable. Every assignment announces, also of an equal value; the optional
/// after-change action runs once the value has changed.
template <class T>
class Published
{
public:
    using DidSet = std::function<void(const T &)>;

    Published(Observable *owner, T initial, DidSet didSet = {})
        : m_owner(owner)
        , m_value(std::move(initial))
        , m_didSet(std::move(didSet))
    {}
    Published(const Published &) = delete;

    const T &get() const { return m_value; }
    operator const T &() const { return m_value; } // NOLINT: reads like the value it holds
    const T *operator->() const { return &m_value; }

    Published &operator=(T value)
    {
        m_owner->m_willChange.emitToAll();
        m_value = std::move(value);
        if (m_didSet)
            m_didSet(m_value);
        return *this;
    }
    Published &operator=(const Published &other) { return *this = T(other.m_value); }

    /// Sets the value without announcing or running the after-change action (loading).
    void load(T value) { m_value = std::move(value); }
    /// Sets and announces the value without running the after-change action (loading that ends late).
    void announce(T value)
    {
        m_owner->m_willChange.emitToAll();
        m_value = std::move(value);
    }

private:
    Observable *m_owner;
    T m_value;
    DidSet m_didSet;
};

} // namespace tovi
