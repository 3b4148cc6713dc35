// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QLineEdit>

namespace tovi {

/// A field for one line of text.
class FormTextField final : public QLineEdit
{
    Q_OBJECT

public:
    enum class Content {
        plain,
        secret, ///< shown as dots, never copied, and kept from the accessibility bus
    };

    explicit FormTextField(const QString &placeholder = {}, Content content = Content::plain,
                           QWidget *parent = nullptr);

    /// Shows a text without telling anybody; one that is shown already keeps caret, selection and history.
    void showText(const QString &text);
    /// Runs when the user has changed the text, never for showText(text).
    void onEdit(std::function<void(const QString &text)> edited);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QString m_text;
};

} // namespace tovi
