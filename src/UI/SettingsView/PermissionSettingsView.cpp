// SPDX-License-Identifier: MIT
#include "UI/SettingsView/PermissionSettingsView.h"

#include "Localization.h"
#include "UI/Forms/FormButton.h"
#include "UI/Forms/FormSection.h"
#include "UI/PermissionRows.h"

namespace tovi {

namespace {

QString t(Str key)
{
    return Localization::shared().t(key);
}

} // namespace

PermissionSettingsView::PermissionSettingsView(QWidget *parent)
    : FormView(parent)
{
    FormSection *section = addSection(t(Str::permissionStatus));
    auto *rows = new PermissionRows(PermissionRows::Buttons::keepOpenSettings, this);
    for (QWidget *row : rows->widgets())
        section->addWidget(row);
    auto *refresh = new FormButton(t(Str::refreshStatus));
    connect(refresh, &QPushButton::clicked, rows, &PermissionRows::refresh);
    section->addHint(t(Str::restartHint), refresh);
}

} // namespace tovi
