// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovi {

class EditableTextView;

/// A text view with the background of a field.
class TextFrame final : public QWidget
{
    Q_OBJECT

public:
    enum class Margins { narrow, wide };

    /// Takes the view. The height is the frame's, in points.
    TextFrame(EditableTextView *text, int height, Margins margins = Margins::narrow,
              QWidget *parent = nullptr);

    /// The height that shows all of a text at this width, as far as it is not much longer than a screen.
    int heightFor(const QString &text, int width) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    EditableTextView *m_text;
};

} // namespace tovi
