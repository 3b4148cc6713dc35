// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QMap>
#include <QWidget>

#include "UI/SettingsPane.h"

class QAbstractButton;

namespace tovi {

/// The row of icons with labels over the settings, one of them selected. Tab reaches the selected one, the
/// arrow keys go to the others.
class SettingsToolbar : public QWidget
{
    Q_OBJECT

public:
    /// `clicked` gets the identifier of the item the user has chosen.
    explicit SettingsToolbar(std::function<void(const QString &identifier)> clicked,
                             QWidget *parent = nullptr);

    void setSelectedItem(const QString &identifier);
    QString selectedItem() const;
    /// Looks the labels up again.
    void relabel();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QList<QAbstractButton *> m_items; // in the order of the panes
};

} // namespace tovi
