// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace tovi {

/// Plain text of a form that wraps and follows the palette.
class FormLabel : public QLabel
{
    Q_OBJECT

public:
    enum class Role {
        title,   ///< of a row
        strong,  ///< a title with medium weight
        header,  ///< of a section
        caption, ///< small and secondary
        value,   ///< beside a slider
        warning,
        success,
        failure,
    };

    explicit FormLabel(Role role, const QString &text = {}, QWidget *parent = nullptr);

    void setRole(Role role);
    /// In one line, as far as the text has none of its own.
    int naturalWidth() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyColor();

    Role m_role;
};

} // namespace tovi
