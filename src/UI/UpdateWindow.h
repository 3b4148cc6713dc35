// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "UI/RegularWindow.h"
#include "Updater.h"

namespace tovi {

class EditableTextView;
class FormButton;
class FormLabel;
class Spinner;
class SymbolView;
class TextFrame;

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
    void showNotes(const QString &notes);
    FormButton *defaultButton() const;

    UpdateController &m_controller;
    SymbolView *m_warning;
    FormLabel *m_message;
    Spinner *m_spinner;
    FormLabel *m_notesTitle;
    EditableTextView *m_notes;
    TextFrame *m_notesFrame;
    FormButton *m_download;
    FormButton *m_close;
    FormButton *m_shownDefault = nullptr;
    std::vector<Subscription> m_observers;
};

} // namespace tovi
