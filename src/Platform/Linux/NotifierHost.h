// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QObject>
#include <QString>

class QDBusPendingCallWatcher;

namespace tovi {

/// Whether somebody on the session bus shows status items. Asked for without waiting. Main thread.
class NotifierHost final : public QObject
{
    Q_OBJECT

public:
    /// `changed` runs whenever the answer of isThere() has changed; never in the constructor.
    explicit NotifierHost(std::function<void()> changed);
    ~NotifierHost() override;

    /// None until the answer is known, or while a watcher of items does not give it.
    std::optional<bool> isThere() const { return m_isThere; }

private Q_SLOTS:
    void ask();
    void ownerChanged(const QString &, const QString &, const QString &) { ask(); }

private:
    void answered();

    std::function<void()> m_changed;
    std::optional<bool> m_isThere;
    std::unique_ptr<QDBusPendingCallWatcher> m_question;
};

} // namespace tovi
