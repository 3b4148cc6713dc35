// SPDX-License-Identifier: MIT
#include <algorithm>

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <gtest/gtest.h>

#include "AppDelegate.h"
#include "Localization.h"
#include "Settings.h"
#include "Support/TestPlatform.h"
#include "UI/MainMenu.h"

namespace tovi {
namespace {

using namespace std::chrono_literals;

class AppDelegateMenus : public testing::Test
{
protected:
    void SetUp() override
    {
        platform.userDefaults().values[QStringLiteral("ocrEnabled")] = false;
        platform.userDefaults().values[QStringLiteral("hasCompletedOnboarding")] = true;
        delegate.applicationDidFinishLaunching();
    }
    void select(const QString &text)
    {
        auto element = std::make_shared<TestElement>();
        element->attributes[QStringLiteral("AXSelectedText")] = {AXError::None, text};
        platform.accessibility().systemWide->attributes[QStringLiteral("AXFocusedUIElement")] = {
            AXError::None, AXElement(element)};
    }
    /// Whether a panel with this text opens; without a network its translation ends soon. Closes it.
    bool showsPanel(const QString &source)
    {
        auto &open = platform.panelHost().open;
        const bool isShown = waitUntil([&] {
            if (open.isEmpty() || !open.first()->visible)
                return false;
            const QWidget &content = *open.first()->content;
            return content.findChild<QPlainTextEdit *>()->toPlainText() == source &&
                   (source.isEmpty() || !content.findChild<QTextEdit *>()->toPlainText().isEmpty());
        });
        if (!open.isEmpty())
            open.first()->onEscape();
        return isShown && waitUntil([&] { return open.isEmpty(); });
    }

    /// As the user sees it.
    QMenu &openedStatusMenu()
    {
        emit delegate.statusMenu().aboutToShow();
        return delegate.statusMenu();
    }

    TestPlatform platform;
    AppDelegate delegate;
};

/// What a menu shows: titles with their keys, "-" for a separator, "*" before what is checked.
QStringList contents(const QMenu &menu)
{
    QStringList lines;
    for (const QAction *item : menu.actions()) {
        const QString keys = item->shortcut().toString();
        lines << (item->isSeparator() ? QStringLiteral("-")
                                      : (item->isChecked() ? QStringLiteral("*") : QString()) + item->text() +
                                            (keys.isEmpty() ? QString() : QStringLiteral(" | ") + keys));
    }
    return lines;
}

void choose(const QMenu &menu, const char *title)
{
    for (QAction *item : menu.actions()) {
        if (item->text().startsWith(QString::fromUtf8(title)))
            return item->trigger();
    }
    ADD_FAILURE() << "no item " << title;
}

TEST_F(AppDelegateMenus, TheStatusMenuFollowsTheSettings)
{
    const auto list = [](const char *lines) { return QString::fromUtf8(lines).split(u'\n'); };
    EXPECT_EQ(contents(openedStatusMenu()),
              list("Translate Selection    ⌥D\nOCR Capture    ⌥S\nInput Translate    ⌥T\n-\n"
                   "Settings… | Ctrl+,\nCheck for Updates…\n-\nTranslate to\n-\nQuit Tovi | Ctrl+Q"));
    Settings::shared().captureHotKey = HotKey{3, HotKey::command};
    Settings::shared().targetLanguage = QStringLiteral("es");
    Localization::shared().language = AppLanguage::de;
    EXPECT_EQ(contents(openedStatusMenu()).first(), QStringLiteral("Auswahl übersetzen    ⌘F"));
    EXPECT_EQ(MainMenu::shared().menus().back()->title(), QStringLiteral("Bearbeiten"));
    const auto languages = [&] { return openedStatusMenu().findChild<QMenu *>(); };
    EXPECT_EQ(contents(*languages()),
              list("简体中文\n繁體中文\nEnglish\n日本語\n한국어\nFrançais\nDeutsch\n*Español\nРусский"));
    choose(*languages(), "日本語");
    EXPECT_EQ(Settings::shared().targetLanguage.get(), QStringLiteral("ja"));
    EXPECT_EQ(platform.userDefaults().values[QStringLiteral("targetLanguage")].toString(),
              QStringLiteral("ja"));
    EXPECT_TRUE(contents(*languages()).contains(QStringLiteral("*日本語")));
    Localization::shared().language = AppLanguage::system;
}

TEST_F(AppDelegateMenus, TheStatusItemWaitsForAPlace)
{
    AppDelegate other;
    platform.application().bar = {};
    other.applicationDidFinishLaunching();
    platform.application().barChanged.emitToAll();
    EXPECT_FALSE(other.statusItem());
    platform.application().bar = {.isThere = true, .isDark = true};
    platform.application().barChanged.emitToAll();
    ASSERT_TRUE(other.statusItem());
    const QSystemTrayIcon *item = other.statusItem();
    const qint64 icon = item->icon().cacheKey();
    platform.application().bar = {.isThere = false, .isDark = false};
    platform.application().barChanged.emitToAll();
    EXPECT_EQ(other.statusItem(), item);
    EXPECT_NE(item->icon().cacheKey(), icon);
}

TEST_F(AppDelegateMenus, MenuItemsAndLaunchArgumentsTakeTheSameRoads)
{
    const QMenu &application = *MainMenu::shared().menus().front();
    for (const char *item : {"Hide Tovi", "Hide Others", "Show All"})
        choose(application, item);
    EXPECT_EQ(platform.application().requests.join(u','), QStringLiteral("hide,hide others,show all"));
    choose(application, "Quit");
    choose(openedStatusMenu(), "Quit");
    EXPECT_EQ(platform.application().terminations, 2);

    select(QStringLiteral("words"));
    const std::pair<const char *, const char *> roads[] = {{"Input Translate", "--input"},
                                                           {"Translate Selection", "--translate-selection"}};
    for (const auto &[item, argument] : roads) {
        const bool isInput = QLatin1String(argument) == QLatin1String("--input");
        const QString source = isInput ? QString() : QStringLiteral("words");
        choose(openedStatusMenu(), item);
        EXPECT_TRUE(showsPanel(source)) << item;
        delegate.handleArguments({QLatin1String(argument)});
        EXPECT_TRUE(showsPanel(source)) << argument;
    }
}

TEST_F(AppDelegateMenus, TheEditMenuWorksOnWhatHasTheFocus)
{
    QMainWindow window;
    auto *field = new QLineEdit(QStringLiteral("one two"));
    window.setCentralWidget(field);
    MainMenu::shared().install(window);
    Localization::shared().language = AppLanguage::en; // the menus are made anew
    window.show();
    const auto focusField = [&] {
        window.activateWindow();
        field->setFocus();
        return waitUntil([&] { return QApplication::focusWidget() == field; });
    };
    ASSERT_TRUE(focusField());
    QAction *title = window.menuBar()->actions().at(1);
    const QMenu &edit = *title->menu();
    // Opened by the keyboard, which is in the menu bar then.
    window.menuBar()->setFocus(Qt::MenuBarFocusReason);
    window.menuBar()->setActiveAction(title);
    ASSERT_TRUE(edit.isVisible());
    EXPECT_TRUE(edit.actions().last()->isEnabled());
    choose(edit, "Select All");
    EXPECT_EQ(field->selectedText(), QStringLiteral("one two"));
    title->menu()->hide();
    ASSERT_TRUE(focusField());
    field->deselect();
    const auto isEnabled = [](const QAction *item) { return item->isEnabled(); };
    ASSERT_TRUE(waitUntil([&] { return std::ranges::all_of(edit.actions(), isEnabled); }));
    choose(edit, "Select All");
    choose(edit, "Copy");
    EXPECT_EQ(platform.pasteboard().text(1s).value.text, QStringLiteral("one two"));
    choose(edit, "Delete");
    choose(edit, "Undo");
    EXPECT_EQ(field->text(), QStringLiteral("one two"));
    choose(edit, "Redo");
    EXPECT_EQ(field->text(), QString());
    choose(edit, "Paste");
    EXPECT_TRUE(waitUntil([&] { return field->text() == QLatin1String("one two"); }));
    field->setEchoMode(QLineEdit::Password);
    field->selectAll();
    choose(edit, "Cut");
    EXPECT_EQ(field->text(), QStringLiteral("one two")) << "a hidden text leaves no copy";
    Localization::shared().language = AppLanguage::system;
}

} // namespace
} // namespace tovi
