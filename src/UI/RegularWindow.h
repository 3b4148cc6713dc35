// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QMainWindow>

namespace tovi {

/// An ordinary window of the program, which the window manager decorates.
class RegularWindow : public QMainWindow
{
    Q_OBJECT

public:
    enum class Style {
        resizable, ///< and miniaturizable; never maximized
        fixed,     ///< as large as its content, with a close button only
    };

    explicit RegularWindow(Style style);

    /// Runs when the user or the program closes it; the window may be deleted later, not in it.
    std::function<void()> onClose;

    /// Shows it in the middle of the pointer's screen, or brings it forward, and directs the keyboard to it.
    void makeKeyAndOrderFront();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// The style `fixed`.
    bool isAsLargeAsItsContent() const;
    /// Not larger than the screen's room for windows, as far as it may be small.
    void shrinkInto(const QRect &room, const QSize &frame);

    bool m_isNew = false; ///< shown, and its frame not yet looked at
};

} // namespace tovi
