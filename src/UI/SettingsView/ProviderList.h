// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QListWidget>
#include <QUuid>

#include "ProviderConfig.h"

namespace tovi {

/// The engines, one selected.
class ProviderList final : public QListWidget
{
    Q_OBJECT

public:
    explicit ProviderList(QWidget *parent = nullptr);

    /// What a row with this name needs, in points, with the scroll bar's place; also with the badge of the
    /// default engine.
    static int widthFor(const QString &name);

    /// Tells nobody.
    void showProviders(const QList<ProviderConfig> &providers, const QUuid &current,
                       const std::optional<QUuid> &selected);

    /// The user has selected an engine.
    std::function<void(const QUuid &id)> onSelect;
    /// The user asks for an engine's menu at a point of the list.
    std::function<void(const QUuid &id, const QPoint &at)> onMenu;

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    bool m_isShowing = false;
};

} // namespace tovi
