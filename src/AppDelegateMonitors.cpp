// SPDX-License-Identifier: MIT
#include "AppDelegate.h"

#include <QApplication>
#include <QPointer>

#include "Capture/ClipboardCapturer.h"
#include "Platform/EventMonitors.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Settings.h"
#include "UI/TextEditing.h"

namespace tovi {

namespace {

constexpr std::chrono::milliseconds doubleCopyInterval{450};

/// What makes C the copy key in the frontmost application. One that has no such key copies nothing.
std::optional<quint32> copyModifiers()
{
    const auto frontmost = Platform::current().workspace().frontmostApplication();
    return frontmost ? frontmost->copyModifiers : quint32(ModifierFlag::command);
}

std::optional<TextEditing> editingOf(quint32 keyCode)
{
    switch (keyCode) {
    case keyCodeC:
        return TextEditing::copy;
    case 9:
        return TextEditing::paste;
    case 7:
        return TextEditing::cut;
    case 0:
        return TextEditing::selectAll;
    default:
        return {};
    }
}

} // namespace

void AppDelegate::setupDoubleCopyMonitor()
{
    m_keyMonitor = Platform::current().eventMonitors().addGlobalKeyDownMonitor(
        keyCodeC, [self = QPointer(this)](const KeyEvent &event) {
            if (self)
                self->copyKeyPressed(event);
        });
}

void AppDelegate::copyKeyPressed(const KeyEvent &event)
{
    if (!Settings::shared().enableDoubleCopy || !(event.modifiers & ModifierFlag::command))
        return;
    const auto required = copyModifiers();
    if (!required || (event.modifiers & *required) != *required || ClipboardCapturer::isSimulating())
        return;
    const Clock::Time now = Platform::current().clock().now();
    if (now - m_lastCopyTime < doubleCopyInterval) {
        m_lastCopyTime = Clock::distantPast(); // a third one begins a new pair
        captureFromPasteboard();
    } else {
        m_lastCopyTime = now;
    }
}

void AppDelegate::setupTextEditingMonitor()
{
    m_textEditingMonitor =
        Platform::current().eventMonitors().addLocalKeyDownMonitor([](const KeyEvent &event) {
            constexpr quint32 examined = ModifierFlag::control | ModifierFlag::option | ModifierFlag::command;
            QWidget *firstResponder = QApplication::focusWidget();
            const auto editing = editingOf(event.keyCode);
            return (event.modifiers & examined) == ModifierFlag::command && editing && firstResponder &&
                   perform(*editing, *firstResponder);
        });
}

} // namespace tovi
