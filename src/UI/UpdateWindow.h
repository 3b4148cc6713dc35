// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "UI/RegularWindow.h"
#include "Updater.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace tovi {

/// What a check for updates has found, or why it has found nothing. Main thread.
class UpdateWindow final : public RegularWindow
{
    Q_OBJECT

public:
    /// Asks the updater to look and shows what it says: the one road of every menu item and button.
    static void checkForUpdates();

    explicit UpdateWindow(UpdateController &controller);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refresh();

    UpdateController &m_controller;
    QLabel *m_message;
    QPlainTextEdit *m_notes;
    QString m_shownNotes;
    QPushButton *m_download;
    QPushButton *m_close;
    std::vector<Subscription> m_observers;
};

} // namespace tovi
