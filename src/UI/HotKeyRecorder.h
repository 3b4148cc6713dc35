// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QAbstractButton>

#include "HotKey.h"
#include "HotKeyStatus.h"

namespace tovi {

class KeyboardFocus;

/// Shows a shortcut; a click or Return starts recording the next combination of keys. Esc and a
/// press elsewhere leave the value, Backspace and Delete empty it, a key without Ctrl, Alt or Super is
/// refused with a beep. Main thread.
class HotKeyRecorder : public QAbstractButton
{
    Q_OBJECT

public:
    static const QString recordingChangedNotification; ///< "com.brevoll.tovi.hotKeyRecordingChanged"

    explicit HotKeyRecorder(QWidget *parent = nullptr);
    ~HotKeyRecorder() override;

    const HotKey &hotKey() const { return m_hotKey; }
    void setHotKey(const HotKey &keys);
    bool isRecording() const { return m_isRecording; }

    /// The user has recorded a value or emptied it.
    std::function<void(const HotKey &)> onChange;
    std::function<void(bool isRecording)> onRecordingChanged;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void startRecording();
    void endRecording();
    void record(const QKeyEvent &event);
    void change(const HotKey &keys);
    void contentChanged();

    HotKey m_hotKey;
    bool m_isRecording = false;
    KeyboardFocus *m_focus;
};

/// A recorder of the setting of a slot. It posts recordingChangedNotification with "recording" true when it
/// begins to record, and false when it ends.
QWidget *makeHotKeyRecorder(HotKeyStatus::Slot slot, QWidget *parent);

} // namespace tovi
