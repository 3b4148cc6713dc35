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

    /// The version text, such as "1.4.2 (37)"; what is missing counts as 0.1.0 and 1.
    static QString version(const QString &shortVersion, const QString &build);
};

} // namespace tovi
