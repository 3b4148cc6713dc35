// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>

class QDBusPendingCallWatcher;

namespace tovi {

/// The desktop's light or dark preference, from the settings portal. Asked for without waiting. Main thread.
class DesktopAppearance final : public QObject
{
    Q_OBJECT
public:
    /// `changed` runs whenever the answer of prefersDark() has changed.
    DesktopAppearance(const QDBusConnection &bus, std::function<void()> changed);

    /// None while unknown, or where the desktop has no preference.
    std::optional<bool> prefersDark() const { return m_prefersDark; }

private Q_SLOTS:
    void settingChanged(const QDBusMessage &message);

private:
    void ask();
    void answered(QDBusPendingCallWatcher *watcher);
    void take(const QVariant &colorScheme);

    QDBusConnection m_bus;
    std::function<void()> m_changed;
    std::optional<bool> m_prefersDark;
};

} // namespace tovi
