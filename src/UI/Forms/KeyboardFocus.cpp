// SPDX-License-Identifier: MIT
#include "UI/Forms/KeyboardFocus.h"

#include <QFocusEvent>
#include <QWidget>

#include "UI/Controls/ControlSurface.h"

namespace tovi {

KeyboardFocus::KeyboardFocus(QWidget *control)
    : QObject(control)
    , m_control(control)
{
    control->installEventFilter(this);
}

bool KeyboardFocus::isShown() const
{
    return m_cameByKey && m_control->hasFocus();
}

void KeyboardFocus::keyUsed()
{
    m_cameByKey = true;
    m_control->update();
}

bool KeyboardFocus::isShownFor(const QWidget *control)
{
    const auto *focus = control ? control->findChild<KeyboardFocus *>() : nullptr;
    return focus && focus->isShown();
}

bool KeyboardFocus::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        m_cameByKey = ControlSurface::showsFocusAfter(*static_cast<QFocusEvent *>(event), m_cameByKey);
        m_control->update();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace tovi
