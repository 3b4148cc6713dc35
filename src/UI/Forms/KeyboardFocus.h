// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace tovi {

/// Tells whether a control should show a focus ring: only while it has the keyboard, and got it by a key.
class KeyboardFocus : public QObject
{
public:
    explicit KeyboardFocus(QWidget *control);

    bool isShown() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_control;
    bool m_cameByKey = false;
};

} // namespace tovi
