// SPDX-License-Identifier: MIT
#pragma once

#include <unordered_map>

#include <QString>
#include <QVariantMap>

#include "Platform/Subscription.h"

namespace tovi {

/// The program's own notifications, by name; delivered synchronously on the posting (main) thread.
class NotificationCenter
{
public:
    using Handler = std::function<void(const QVariantMap &userInfo)>;

    void post(const QString &name, const QVariantMap &userInfo = {})
    {
        if (const auto it = m_subjects.find(name); it != m_subjects.end())
            it->second.emitToAll(userInfo);
    }
    [[nodiscard]] Subscription observe(const QString &name, Handler handler)
    {
        return m_subjects[name].subscribe(std::move(handler));
    }

private:
    std::unordered_map<QString, Subject<const QVariantMap &>> m_subjects;
};

} // namespace tovi
