// SPDX-License-Identifier: MIT
#include "UI/Forms/SymbolView.h"

#include <cmath>

#include <QPainter>

#include "UI/Controls/SystemColor.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi {

namespace {

QColor colorFor(SymbolView::Tint tint, const QPalette &palette)
{
    switch (tint) {
    case SymbolView::Tint::secondary:
        return SystemColor::secondaryLabel(palette);
    case SymbolView::Tint::accent:
        return SystemColor::accent(palette);
    case SymbolView::Tint::green:
        return SystemColor::green(palette);
    case SymbolView::Tint::red:
        return SystemColor::red(palette);
    case SymbolView::Tint::orange:
        return SystemColor::orange(palette);
    case SymbolView::Tint::label:
        break;
    }
    return SystemColor::label(palette);
}

} // namespace

SymbolView::SymbolView(double fontSize, QWidget *parent)
    : QWidget(parent)
    , m_fontSize(fontSize)
{
    setFixedSize(sizeHint());
}

void SymbolView::setSymbol(const QString &name, Tint tint, const QString &description)
{
    m_name = name;
    m_tint = tint;
    setAccessibleName(description);
    update();
}

QSize SymbolView::sizeHint() const
{
    const int side = static_cast<int>(std::ceil(m_fontSize * 14 / 13));
    return {side, side};
}

void SymbolView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    SystemSymbol::image(m_name, m_fontSize).paint(painter, QRectF(rect()), colorFor(m_tint, palette()));
}

} // namespace tovi
