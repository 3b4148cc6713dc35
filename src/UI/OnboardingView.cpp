// SPDX-License-Identifier: MIT
#include "UI/OnboardingView.h"

#include <QBoxLayout>
#include <QKeySequence>
#include <QPainter>
#include <QShortcut>

#include "Localization.h"
#include "UI/Controls/SystemColor.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormStyle.h"
#include "UI/LogoView.h"
#include "UI/PermissionRows.h"

namespace tovi {

namespace {

// Points.
constexpr int viewWidth = 480;
constexpr int padding = 26;
constexpr int spacing = 14;
constexpr int logoSide = 68;
constexpr int titleSize = 17;
constexpr int subtitleSize = 12;
constexpr int subtitleWidth = 380;
constexpr int boxPadding = 16;
constexpr double boxRadius = 10;

QString t(Str key)
{
    return Localization::shared().t(key);
}

class Box final : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor fill = SystemColor::label(palette());
        fill.setAlphaF(0.04F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), boxRadius, boxRadius);
    }
};

} // namespace

OnboardingView::OnboardingView(std::function<void()> onFinish, QWidget *parent)
    : FittedView(viewWidth, parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(spacing);
    column->addWidget(new LogoView(logoSide), 0, Qt::AlignHCenter);

    auto *title = new FormLabel(FormLabel::Role::title, t(Str::onboardingTitle));
    title->setFont(FormStyle::font(titleSize, QFont::DemiBold));
    title->setAlignment(Qt::AlignHCenter);
    column->addWidget(title);
    auto *subtitle = new FormLabel(FormLabel::Role::caption, t(Str::onboardingSubtitle));
    subtitle->setFont(FormStyle::font(subtitleSize));
    subtitle->setAlignment(Qt::AlignHCenter);
    const int side = (viewWidth - 2 * padding - subtitleWidth) / 2;
    subtitle->setContentsMargins(side, 0, side, 0);
    column->addWidget(subtitle);

    auto *box = new Box;
    auto *boxColumn = new QVBoxLayout(box);
    boxColumn->setContentsMargins(boxPadding, boxPadding, boxPadding, boxPadding);
    boxColumn->setSpacing(12);
    auto *rows = new PermissionRows(PermissionRows::Buttons::hideWhenGranted, this);
    for (QWidget *row : rows->widgets())
        boxColumn->addWidget(row);
    column->addWidget(box);

    auto *buttons = new QHBoxLayout;
    auto *refresh = new FormButton(t(Str::refreshStatus));
    connect(refresh, &QPushButton::clicked, rows, &PermissionRows::refresh);
    buttons->addWidget(refresh);
    buttons->addStretch(1);
    auto *finish = new FormButton(t(Str::onboardingContinue), FormButton::Kind::prominent);
    connect(finish, &QPushButton::clicked, this, onFinish);
    buttons->addWidget(finish);
    column->addLayout(buttons);

    // The button with the keyboard takes Return before that.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, finish,
                &QAbstractButton::click);
    setFocusProxy(finish);
}

} // namespace tovi
