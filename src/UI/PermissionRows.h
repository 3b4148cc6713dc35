// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QList>
#include <QObject>

#include "Platform/Subscription.h"

class QWidget;

namespace tovi {

class PermissionRow;

/// The rows of the three permissions, which know whether they are granted. Their owner places them.
class PermissionRows : public QObject
{
    Q_OBJECT

public:
    enum class Buttons {
        keepOpenSettings, ///< the way to the desktop's settings is always there
        hideWhenGranted,
    };

    PermissionRows(Buttons buttons, QObject *owner);

    /// Accessibility, screen recording, automation.
    QList<QWidget *> widgets() const;

public Q_SLOTS:
    /// Reads what is granted; asks nobody. Happens by itself when a row or its window comes to the front.
    void refresh();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// Once more a little later, too: desktops answer a request when they come to it.
    void refreshNowAndLater();

    PermissionRow *m_accessibility;
    PermissionRow *m_screenRecording;
    PermissionRow *m_automation;
    Subscription m_laterRefresh;
};

} // namespace tovi
