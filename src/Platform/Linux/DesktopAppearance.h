// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QDBusVariant>
#include <QObject>
#include <QString>

class QDBusPendingCallWatcher;

namespace tovi {

/// The desktop's light or dark preference, from the settings portal. Asked for without waiting. Main thread.
class DesktopAppearance final : public QObject
{
    Q_OBJECT
public:
    /// `changed` runs whenever the answer of prefersDark() has changed.
    explicit DesktopAppearance(std::function<void()> changed);

    /// None while unknown, or where the desktop has no preference.
    std::optional<bool> prefersDark() const { return m_prefersDark; }

private Q_SLOTS:
    void settingChanged(const QString &nameSpace, const QString &key, const QDBusVariant &value);

private:
    void answered(QDBusPendingCallWatcher *watcher);
    void take(const QVariant &colorScheme);

    std::function<void()> m_changed;
    std::optional<bool> m_prefersDark;
};

} // namespace tovi
