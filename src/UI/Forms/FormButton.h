// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

namespace tovi {

class KeyboardFocus;

/// A push button with a rounded background. Space presses it; Return, too, when the keyboard came to it by a
/// key, and else belongs to the window.
class FormButton : public QPushButton
{
    Q_OBJECT

public:
    enum class Kind {
        regular,
        small,
        prominent, ///< in the accent colour: what the window is for
    };

    explicit FormButton(const QString &text, Kind kind = Kind::regular, QWidget *parent = nullptr);

    void setKind(Kind kind);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    bool takes(int key) const;

    Kind m_kind = Kind::regular;
    KeyboardFocus *m_focus;
};

} // namespace tovi
