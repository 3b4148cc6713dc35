// SPDX-License-Identifier: MIT
#include "UI/HotKeyRecorder.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "Localization.h"
#include "Platform/Application.h"
#include "Platform/DispatchQueue.h"
#include "Platform/HotKeyCenter.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Settings.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/KeyboardFocus.h"

namespace tovi {

namespace {

constexpr QSize naturalSize(150, 24);
constexpr double radius = 5;

QString prompt()
{
    return Localization::shared().t(Str::shortcutsRecording);
}

/// Keys that only change what others mean.
bool isModifierKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
    case Qt::Key_Mode_switch:
        return true;
    default:
        return false;
    }
}

Published<HotKey> &settingOf(HotKeyStatus::Slot slot)
{
    Settings &settings = Settings::shared();
    switch (slot) {
    case HotKeyStatus::Slot::ocr:
        return settings.ocrHotKey;
    case HotKeyStatus::Slot::input:
        return settings.inputHotKey;
    case HotKeyStatus::Slot::capture:
        break;
    }
    return settings.captureHotKey;
}

class SettingRecorder final : public HotKeyRecorder
{
public:
    SettingRecorder(HotKeyStatus::Slot slot, QWidget *parent)
        : HotKeyRecorder(parent)
        , m_setting(settingOf(slot))
        , m_observed(Settings::shared().onWillChange([this] {
            asyncOnMain([self = QPointer(this)] {
                if (self)
                    self->setHotKey(self->m_setting);
            });
        }))
    {
        setHotKey(m_setting);
        onChange = [this](const HotKey &keys) { m_setting = keys; };
        onRecordingChanged = [](bool isRecording) {
            Platform::current().notificationCenter().post(HotKeyRecorder::recordingChangedNotification,
                                                          {{QStringLiteral("recording"), isRecording}});
        };
    }

private:
    Published<HotKey> &m_setting;
    Subscription m_observed;
};

} // namespace

const QString HotKeyRecorder::recordingChangedNotification =
    QStringLiteral("com.brevoll.tovi.hotKeyRecordingChanged");

HotKeyRecorder::HotKeyRecorder(QWidget *parent)
    : QAbstractButton(parent)
    , m_focus(new KeyboardFocus(this))
{
    setFont(FormStyle::font(12, QFont::Medium));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QAbstractButton::clicked, this, &HotKeyRecorder::startRecording);
    contentChanged();
}

HotKeyRecorder::~HotKeyRecorder()
{
    if (m_isRecording)
        endRecording();
}

void HotKeyRecorder::setHotKey(const HotKey &keys)
{
    if (std::exchange(m_hotKey, keys) != keys)
        contentChanged();
}

QSize HotKeyRecorder::sizeHint() const
{
    // Room for the longer one from the start: a control does not grow under the pointer.
    const int width = std::max(fontMetrics().horizontalAdvance(prompt()),
                               fontMetrics().horizontalAdvance(m_hotKey.displayString()));
    return naturalSize.expandedTo({width + 16, fontMetrics().height() + 4});
}

bool HotKeyRecorder::event(QEvent *event)
{
    // All of them: those of menus, and those that move the focus.
    if (m_isRecording && (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress)) {
        if (event->type() == QEvent::KeyPress)
            record(*static_cast<QKeyEvent *>(event));
        event->accept();
        return true;
    }
    return QAbstractButton::event(event);
}

bool HotKeyRecorder::eventFilter(QObject *watched, QEvent *event)
{
    // Most of a window takes no focus, so a press there does not take ours.
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() &&
        !rect().contains(mapFromGlobal(static_cast<QMouseEvent *>(event)->globalPosition()).toPoint()))
        endRecording();
    return QAbstractButton::eventFilter(watched, event);
}

void HotKeyRecorder::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

void HotKeyRecorder::focusOutEvent(QFocusEvent *event)
{
    if (m_isRecording)
        endRecording();
    QAbstractButton::focusOutEvent(event);
}

void HotKeyRecorder::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = SystemColor::accent(palette());
    QColor background = palette().color(QPalette::Base);
    if (m_isRecording) {
        background = accent;
        background.setAlphaF(0.15F);
    }
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(background);
    painter.setPen(QPen(m_isRecording ? accent : SystemColor::separator(palette()), 1));
    painter.drawRoundedRect(frame, radius, radius);
    painter.setPen(m_isRecording ? accent : SystemColor::label(palette()));
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine,
                     m_isRecording ? prompt() : m_hotKey.displayString());
    if (m_focus->isShown() && !m_isRecording)
        FormStyle::paintFocusRing(painter, QRectF(rect()), radius, palette());
}

void HotKeyRecorder::startRecording()
{
    setFocus(Qt::OtherFocusReason);
    if (std::exchange(m_isRecording, true))
        return;
    qApp->installEventFilter(this);
    contentChanged();
    if (onRecordingChanged)
        onRecordingChanged(true);
}

void HotKeyRecorder::endRecording()
{
    m_isRecording = false;
    qApp->removeEventFilter(this);
    contentChanged();
    if (onRecordingChanged)
        onRecordingChanged(false);
}

void HotKeyRecorder::record(const QKeyEvent &event)
{
    // The key that has started the recording may still be down.
    if (isModifierKey(event.key()) || event.isAutoRepeat())
        return;
    m_focus->keyUsed();
    if (event.key() == Qt::Key_Escape) {
        endRecording();
        return;
    }
    if (event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete) {
        change(HotKey());
        return;
    }
    const auto keyCode = Platform::current().hotKeyCenter().keyCodeAt(event.nativeScanCode());
    const quint32 modifiers = HotKey::carbonModifiers(event.modifiers());
    if (!keyCode || !(modifiers & (HotKey::command | HotKey::option | HotKey::control)))
        Platform::current().application().beep();
    else
        change({*keyCode, modifiers});
}

void HotKeyRecorder::change(const HotKey &keys)
{
    setHotKey(keys);
    if (onChange)
        onChange(keys);
    endRecording();
}

void HotKeyRecorder::contentChanged()
{
    // The name is the row's.
    setAccessibleDescription(m_isRecording ? prompt() : m_hotKey.displayString());
    updateGeometry();
    update();
}

QWidget *makeHotKeyRecorder(HotKeyStatus::Slot slot, QWidget *parent)
{
    return new SettingRecorder(slot, parent);
}

} // namespace tovi
