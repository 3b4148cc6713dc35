// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace tovi {

/// Tells whether a control should show a focus ring: only while it has the keyboard, and got or used it by a
/// key.
class KeyboardFocus : public QObject
{
    Q_OBJECT

public:
    explicit KeyboardFocus(QWidget *control);

    bool isShown() const;
    /// A control that a click brought the keyboard to has just used a key.
    void keyUsed();
    /// Whether the control with the keyboard shows its ring; controls without a ring never do.
    static bool isShownFor(const QWidget *control);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_control;
    bool m_cameByKey = false;
};

} // namespace tovi
