// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace tovi {

/// Name, version, and a button that looks for a newer one.
class AboutSettingsView : public QWidget
{
    Q_OBJECT

public:
    explicit AboutSettingsView(QWidget *parent = nullptr);
};

} // namespace tovi
