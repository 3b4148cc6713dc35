// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include <QMenu>
#include <QObject>
#include <QPointer>

class QMainWindow;
class QMenuBar;

namespace tovi {

/// The program's main menu: a menu bar in each of its regular windows, with key equivalents that work in its
/// panels, too. Main thread.
class MainMenu final : public QObject
{
    Q_OBJECT

public:
    static MainMenu &shared();
    MainMenu();
    ~MainMenu() override;

    /// Puts the menu bar into a window; it follows when the menus are made anew.
    void install(QMainWindow &window);

    /// Replaces all menus.
    void setMenus(std::vector<std::unique_ptr<QMenu>> menus);
    const std::vector<std::unique_ptr<QMenu>> &menus() const { return m_menus; }

    /// What the menus' commands go to: what has the focus, or had it before the menu bar took it.
    QWidget *firstResponder() const;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    void fill(QMenuBar &bar);

    std::vector<std::unique_ptr<QMenu>> m_menus;
    std::vector<QPointer<QMenuBar>> m_bars;
    QPointer<QWidget> m_lastFocus; ///< never a menu bar
};

} // namespace tovi
