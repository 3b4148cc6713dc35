// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "UI/Controls/IconImage.h"

namespace tovi {

/// A system symbol in a colour of the palette.
class SymbolView : public QWidget
{
    Q_OBJECT

public:
    enum class Tint { label, secondary, accent, green, red, orange };

    /// The font size that the symbol goes with, in points.
    explicit SymbolView(double fontSize, QWidget *parent = nullptr);

    /// `description` is what a screen reader says; empty when the text beside says it already.
    void setSymbol(const QString &name, Tint tint, const QString &description = {});
    QString symbol() const { return m_name; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_fontSize;
    QString m_name;
    Tint m_tint = Tint::label;
};

} // namespace tovi
