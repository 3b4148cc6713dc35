// SPDX-License-Identifier: MIT
#include "UI/Forms/FormLabel.h"

#include <QApplication>
#include <QEvent>

#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormStyle.h"

namespace tovi {

namespace {

QFont fontFor(FormLabel::Role role)
{
    switch (role) {
    case FormLabel::Role::strong:
        return FormStyle::font(FormStyle::bodySize, QFont::Medium);
    case FormLabel::Role::header:
        return FormStyle::font(FormStyle::bodySize, QFont::DemiBold);
    case FormLabel::Role::caption:
    case FormLabel::Role::warning:
    case FormLabel::Role::success:
    case FormLabel::Role::failure:
        return FormStyle::font(FormStyle::captionSize);
    case FormLabel::Role::title:
    case FormLabel::Role::value:
        break;
    }
    return FormStyle::font(FormStyle::bodySize);
}

QColor colorFor(FormLabel::Role role, const QPalette &palette)
{
    switch (role) {
    case FormLabel::Role::header:
    case FormLabel::Role::caption:
    case FormLabel::Role::value:
        return SystemColor::secondaryLabel(palette);
    case FormLabel::Role::warning:
        return SystemColor::orange(palette);
    case FormLabel::Role::success:
        return SystemColor::green(palette);
    case FormLabel::Role::failure:
        return SystemColor::red(palette);
    case FormLabel::Role::title:
    case FormLabel::Role::strong:
        break;
    }
    return SystemColor::label(palette);
}

} // namespace

FormLabel::FormLabel(Role role, const QString &text, QWidget *parent)
    : QLabel(text, parent)
    , m_role(role)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(role != Role::value);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(wordWrap());
    setSizePolicy(policy);
    setRole(role);
}

void FormLabel::setRole(Role role)
{
    m_role = role;
    setFont(fontFor(role));
    applyColor();
}

int FormLabel::naturalWidth() const
{
    const QMargins margins = contentsMargins();
    return fontMetrics().size(0, text()).width() + margins.left() + margins.right() + 1;
}

void FormLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColor();
    QLabel::changeEvent(event);
}

void FormLabel::applyColor()
{
    const QColor color = colorFor(m_role, QApplication::palette());
    if (palette().color(QPalette::WindowText) == color)
        return;
    QPalette palette = this->palette();
    palette.setColor(QPalette::WindowText, color);
    setPalette(palette);
}

} // namespace tovi
