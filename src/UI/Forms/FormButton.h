// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>

namespace tovi {

class KeyboardFocus;

/// A push button with a rounded ground. Space and Return press it.
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

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    const Kind m_kind;
    KeyboardFocus *m_focus;
};

} // namespace tovi
