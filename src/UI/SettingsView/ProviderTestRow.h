// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include <QWidget>

#include "UI/SettingsView/ProviderTestState.h"

class QBoxLayout;

namespace tovi {

class FormButton;
class FormLabel;
class Spinner;
class SymbolView;

/// A button that starts a test and, beside it or where that is too narrow under it, what came of the last.
class ProviderTestRow final : public QWidget
{
    Q_OBJECT

public:
    explicit ProviderTestRow(QWidget *parent = nullptr);

    FormButton *button() const { return m_button; }
    void show(const ProviderTestState &state);
    using QWidget::show;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void arrange();

    std::optional<ProviderTestState> m_state;
    FormButton *m_button;
    Spinner *m_spinner;
    SymbolView *m_symbol;
    FormLabel *m_message;
    QWidget *m_outcome;
    QBoxLayout *m_layout;
};

} // namespace tovi
