// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Forms/FormView.h"

namespace tovi {

/// What the program may do here, read again whenever the pane comes into view.
class PermissionSettingsView : public FormView
{
    Q_OBJECT

public:
    explicit PermissionSettingsView(QWidget *parent = nullptr);
};

} // namespace tovi
