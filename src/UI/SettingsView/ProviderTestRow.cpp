// SPDX-License-Identifier: MIT
#include "UI/SettingsView/ProviderTestRow.h"

#include <utility>

#include <QBoxLayout>

#include "Localization.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormStyle.h"
#include "UI/Forms/SymbolView.h"
#include "UI/Spinner.h"

namespace tovi {

namespace {

constexpr int spacing = 8;

/// A control that is disabled loses the keyboard; here it gets it back, unless the user has gone on.
void setEnabledKeepingFocus(QWidget &control, bool isEnabled)
{
    constexpr const char *hadFocus = "hadFocus";
    if (isEnabled == control.isEnabled())
        return;
    if (!isEnabled) {
        control.setProperty(hadFocus, control.hasFocus());
        control.clearFocus();
    }
    control.setEnabled(isEnabled);
    if (isEnabled && control.property(hadFocus).toBool() && !control.window()->focusWidget())
        control.setFocus(control.underMouse() ? Qt::MouseFocusReason : Qt::TabFocusReason);
}

/// Labels break lines between words only, and what a server says may be one long word.
QString breakable(const QString &text)
{
    constexpr int longestWord = 16;
    QString result;
    int length = 0;
    for (const QChar c : text) {
        length = c.isSpace() ? 0 : length + 1;
        if (length > longestWord && !c.isLowSurrogate() && !c.isMark()) {
            result += QChar(0x200b);
            length = 1;
        }
        result += c;
    }
    return result;
}

} // namespace

ProviderTestRow::ProviderTestRow(QWidget *parent)
    : QWidget(parent)
    , m_button(new FormButton(Localization::shared().t(Str::testConnection)))
    , m_spinner(new Spinner)
    , m_symbol(new SymbolView(FormStyle::bodySize))
    , m_message(new FormLabel(FormLabel::Role::success))
    , m_outcome(new QWidget)
    , m_layout(new QHBoxLayout(this))
{
    auto *start = new QHBoxLayout;
    start->setSpacing(spacing);
    start->addWidget(m_button);
    start->addWidget(m_spinner);
    start->addStretch(1);
    auto *outcome = new QHBoxLayout(m_outcome);
    outcome->setContentsMargins(0, 0, 0, 0);
    outcome->setSpacing(spacing - 2);
    outcome->addWidget(m_symbol, 0, Qt::AlignTop);
    outcome->addWidget(m_message, 1);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(spacing);
    m_layout->addLayout(start);
    m_layout->addWidget(m_outcome, 1, Qt::AlignVCenter);
}

void ProviderTestRow::show(const ProviderTestState &state)
{
    using Kind = ProviderTestState::Kind;
    // Screen readers are told of each assignment of a name, new or not.
    if (std::exchange(m_state, state) == state)
        return;
    const bool isSuccess = state.kind == Kind::success;
    setEnabledKeepingFocus(*m_button, state.kind != Kind::running);
    m_spinner->setVisible(state.kind == Kind::running);
    m_outcome->setVisible(isSuccess || state.kind == Kind::failure);
    m_symbol->setSymbol(isSuccess ? QStringLiteral("checkmark.circle.fill")
                                  : QStringLiteral("xmark.octagon.fill"),
                        isSuccess ? SymbolView::Tint::green : SymbolView::Tint::red);
    m_message->setRole(isSuccess ? FormLabel::Role::success : FormLabel::Role::failure);
    m_message->setText(breakable(state.message));
    m_message->setAccessibleName(state.message);
    arrange();
}

void ProviderTestRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void ProviderTestRow::arrange()
{
    const int beside = width() - m_button->sizeHint().width() - m_symbol->width() - 2 * spacing;
    const bool fits = m_message->fontMetrics().horizontalAdvance(m_message->text()) < beside;
    m_layout->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

} // namespace tovi
