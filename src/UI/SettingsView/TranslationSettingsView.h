// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include <QPointer>
#include <QUuid>
#include <QWidget>

#include "Platform/Subscription.h"
#include "ProviderConfig.h"

class QBoxLayout;
class QMenu;

namespace tovi {

class IconButton;
class ProviderEditor;
class ProviderList;
class ProviderTest;
class Settings;

/// The engines: a list with what can be done to them, and the editor of the selected one. Main thread.
class TranslationSettingsView : public QWidget
{
    Q_OBJECT

public:
    explicit TranslationSettingsView(Settings &settings, QWidget *parent = nullptr);

    /// Appends an engine, selects it and makes it the current one.
    void addProvider(ProviderKind kind);
    /// Appends a copy and selects it.
    void duplicate(const ProviderConfig &config);
    bool canRemoveSelected() const;
    void removeSelected();
    /// The open menu of an engine, or none.
    QMenu *menu() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeSidebar();
    void showMenu(const QUuid &id, const QPoint &at);
    bool canRemove(const QUuid &id) const;
    void select(const QUuid &id);
    void refresh();

    Settings &m_settings;
    std::optional<QUuid> m_selectedProviderID;
    std::shared_ptr<ProviderTest> m_test;
    QWidget *m_sidebar = nullptr;
    ProviderList *m_list = nullptr;
    IconButton *m_remove = nullptr;
    QPointer<QMenu> m_menu;
    QBoxLayout *m_columns;
    ProviderEditor *m_editor = nullptr;
    bool m_isRefreshPending = false;
    Subscription m_observed;
};

} // namespace tovi
