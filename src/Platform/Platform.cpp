// SPDX-License-Identifier: MIT
#include "Platform/Platform.h"

#include <QtGlobal>

namespace tovi {

namespace {
Platform *s_current = nullptr;
}

Platform::Platform()
{
    Q_ASSERT(!s_current);
    s_current = this;
}

Platform::~Platform()
{
    endSharedInstances();
    s_current = nullptr;
}

Platform &Platform::current()
{
    Q_ASSERT(s_current);
    return *s_current;
}

void Platform::endSharedInstances()
{
    for (;;) {
        std::shared_ptr<void> newest;
        {
            const std::scoped_lock lock(m_sharedMutex);
            if (m_shared.empty())
                return;
            newest = std::move(m_shared.back().second);
            m_shared.pop_back();
        }
    }
}

} // namespace tovi
