// SPDX-License-Identifier: MIT
#include "UI/SettingsView/AboutSettingsView.h"

#include <QBoxLayout>

#include "BundleInformation.h"
#include "Localization.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormLabel.h"
#include "UI/Forms/FormStyle.h"
#include "UI/LogoView.h"
#include "UI/UpdateWindow.h"

namespace tovi {

namespace {

QString t(Str key)
{
    return Localization::shared().t(key);
}

FormLabel *makeLine(FormLabel::Role role, const QString &text, int pixels, QFont::Weight weight)
{
    auto *label = new FormLabel(role, text);
    label->setFont(FormStyle::font(pixels, weight));
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

} // namespace

AboutSettingsView::AboutSettingsView(QWidget *parent)
    : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 40);
    column->setSpacing(6);
    column->addStretch(1);
    column->addWidget(new LogoView(96), 0, Qt::AlignHCenter);
    column->addSpacing(6);
    column->addWidget(makeLine(FormLabel::Role::title, BundleInformation::name(), 24, QFont::DemiBold));
    column->addWidget(makeLine(FormLabel::Role::caption,
                               formatted(t(Str::aboutVersionFormat), {BundleInformation::versionText()}),
                               FormStyle::bodySize, QFont::Normal));
    column->addWidget(
        makeLine(FormLabel::Role::caption, t(Str::aboutSubtitle), FormStyle::captionSize, QFont::Normal));
    column->addSpacing(12);
    auto *updates = new FormButton(t(Str::menuCheckUpdates));
    updates->setEnabled(BundleInformation::canLookForUpdates());
    connect(updates, &QPushButton::clicked, this, &UpdateWindow::checkForUpdates);
    column->addWidget(updates, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

} // namespace tovi
