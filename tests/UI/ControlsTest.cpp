// SPDX-License-Identifier: MIT
#include <QAccessible>
#include <QApplication>
#include <QEnterEvent>
#include <QFile>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Support/TestPlatform.h"
#include "UI/Controls/IconButton.h"
#include "UI/Controls/Lucide.h"
#include "UI/Controls/MenuPresenter.h"
#include "UI/Controls/PopupMenuButton.h"
#include "UI/Controls/ProviderIcon.h"
#include "UI/Controls/ProviderLogo.h"
#include "UI/Controls/SystemSymbol.h"

namespace tovi {
namespace {

using testing::ElementsAre;

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

void pressKey(QWidget &widget, Qt::Key key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QApplication::sendEvent(&widget, &release);
}

void clickOn(QWidget &widget)
{
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    }
}

void enter(QWidget &widget)
{
    QEnterEvent event({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&widget, &event);
}

void leave(QWidget &widget)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

int opaquePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    }
    return count;
}

QImage drawn(const IconImage &icon, int side = 48, const QColor &color = Qt::black)
{
    return icon.pixmap(QSizeF(side, side), color, 1).toImage();
}

/// With the icon packages built in.
class BuiltInIcons : public testing::Test
{
protected:
    void SetUp() override
    {
        SystemSymbol::image(s("xmark"));
        if (!QFile::exists(s(":/tovi/icons/lucide.svg")))
            GTEST_SKIP() << "built without the icon packages";
    }
};

TEST_F(BuiltInIcons, EveryLogoAndSymbolDrawsAShape)
{
    QStringList names{s("LucidePin"), s("LucideVolume"), s("LucideArrowUpDown"), s("Lucidearrow-up-down"),
                      s("LucideGrid2x2")};
    for (const auto &row : ProviderLogo::displayNames())
        names << s("logo:") + row.logo;
    names << s("character.book.closed character.bubble checkmark checkmark.circle.fill chevron.down "
               "chevron.up.chevron.down cloud exclamationmark.triangle.fill gearshape info.circle keyboard "
               "lock.shield minus pin pin.fill plus plus.square.on.square questionmark.circle.fill "
               "speaker.wave.2 speaker.wave.2.fill square.on.square xmark xmark.circle.fill "
               "xmark.octagon.fill")
                 .split(u' ');
    for (const QString &name : names) {
        const IconImage icon = ProviderIcon::image(name);
        EXPECT_EQ(icon.size(), QSizeF(16, 16)) << name.toStdString();
        const int pixels = opaquePixels(drawn(icon));
        EXPECT_GT(pixels, 60) << name.toStdString();
        EXPECT_LT(pixels, 48 * 48 * 9 / 10) << name.toStdString();
    }
}

TEST_F(BuiltInIcons, FilledSymbolsAreFilledAndShowTheirMarkAsAHole)
{
    const auto at = [](const char *symbol, QPoint point) {
        return qAlpha(drawn(ProviderIcon::image(s(symbol))).pixel(point));
    };
    EXPECT_EQ(at("pin", {24, 24}), 0);
    EXPECT_EQ(at("pin.fill", {24, 24}), 255);
    EXPECT_EQ(at("xmark.octagon.fill", {24, 12}), 255);
    EXPECT_EQ(at("xmark.octagon.fill", {24, 24}), 0);
    EXPECT_EQ(at("checkmark.circle.fill", {24, 8}), 255);
}

TEST_F(BuiltInIcons, AMissingLucideIconGivesWayToTheSymbolAtItsSize)
{
    EXPECT_EQ(Lucide::image(s("LucideNonsense"), s("pin.fill"), 16), SystemSymbol::image(s("pin.fill"), 16));
    EXPECT_EQ(Lucide::image(s("LucidePin"), s("xmark"), 16), Lucide::image(s("LucidePin")).sized({16, 16}));
}

TEST_F(BuiltInIcons, FallOnWholePixelsAtAFractionalScale)
{
    const IconImage icon = ProviderIcon::image(s("logo:openai"));
    QPixmap canvas(60, 60);
    canvas.setDevicePixelRatio(1.5);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(3, 3);
    icon.paint(painter, QRectF(8, 8, 16, 16), Qt::black);
    painter.end();
    // 11 points are 16.5 pixels.
    EXPECT_EQ(canvas.toImage().copy(17, 17, 24, 24), drawn(icon, 24));
}

class PopupMenuButtonTest : public testing::Test
{
protected:
    PopupMenuButtonTest()
    {
        button->setItems({item("First"), item("Fish & Chips", true), item("Third")});
        window.resize(400, 300);
        window.show();
    }

    PopupMenuItem item(const char *title, bool isSelected = false)
    {
        return {s(title), isSelected, ProviderIcon::image(s("cloud")),
                [this, title] { chosen.emplace_back(title); }};
    }

    TestPlatform platform;
    QWidget window;
    PopupMenuButton *button = new PopupMenuButton(&window);
    std::vector<std::string> chosen;
};

TEST_F(PopupMenuButtonTest, ShowsItsItemsInOrderWithTheirTitlesAsTheyStand)
{
    button->setGeometry(40, 30, 100, 18);
    clickOn(*button);
    ASSERT_TRUE(button->menu());
    EXPECT_EQ(button->menu()->pos(), button->mapToGlobal(QPoint(0, 18))) << "below the button";
    std::vector<QString> titles;
    std::vector<bool> marks;
    for (const QAction *action : button->menu()->actions()) {
        titles.push_back(action->text());
        marks.push_back(action->isChecked());
    }
    EXPECT_THAT(titles, ElementsAre(s("First"), s("Fish && Chips"), s("Third")));
    EXPECT_THAT(marks, ElementsAre(false, true, false));
}

TEST_F(PopupMenuButtonTest, WorksByKeyboard)
{
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down}) {
        chosen.clear();
        pressKey(*button, key);
        ASSERT_TRUE(button->menu()) << key;
        EXPECT_TRUE(MenuPresenter::isMenuOpen());
        pressKey(*button->menu(), Qt::Key_Down); // from the selected item
        pressKey(*button->menu(), Qt::Key_Return);
        EXPECT_THAT(chosen, ElementsAre("Third"));
        EXPECT_FALSE(button->menu());
        EXPECT_FALSE(MenuPresenter::isMenuOpen());
    }
    pressKey(*button, Qt::Key_Space);
    pressKey(*button->menu(), Qt::Key_Escape);
    EXPECT_FALSE(button->menu());
    EXPECT_EQ(chosen.size(), 1U);
}

TEST(MenuPresenter, TypedLettersChooseTheNextItemThatBeginsWithThem)
{
    struct Case
    {
        int pause; ///< before the key, in milliseconds
        const char *key;
        const char *chosen;
    };
    const Case cases[] = {
        {0, "d", "Deutsch"},       {9, "d", "Disk && Co"}, {9, "d", "Deutsch"},
        {9000, "D", "Disk && Co"}, {9, "e", "Deutsch"},    {9, "x", "Deutsch"},
        {9000, "d", "Disk && Co"}, {9, "i", "Disk && Co"}, {9000, "e", "Español 2"},
        {9000, "D", "Deutsch"},
    };
    const TestPlatform platform;
    QWidget window;
    window.show();
    auto made = MenuPresenter::makeMenu();
    for (const char *title : {"Deutsch", "Dutch", "Disk & Co", "Español 2"})
        made->addAction(MenuPresenter::literalTitle(s(title)))->setEnabled(s(title) != s("Dutch"));
    const QPointer<QMenu> menu = MenuPresenter::popUp(std::move(made), window, {});
    quint64 now = 100'000;
    for (const Case &c : cases) {
        now += static_cast<quint64>(c.pause);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, s(c.key));
        press.setTimestamp(now);
        QApplication::sendEvent(menu, &press);
        EXPECT_EQ(menu->activeAction()->text(), s(c.chosen)) << c.key << " at " << now;
    }
    menu->close();
}

TEST(MenuPresenter, ALongMenuStaysOnTheScreen)
{
    const TestPlatform platform;
    QWidget window;
    window.show();
    const QRect screen = window.screen()->availableGeometry();
    for (const int rows : {30, 200}) {
        auto made = MenuPresenter::makeMenu();
        for (int i = 0; i < rows; ++i)
            made->addAction(QString::number(i));
        window.move(screen.center());
        const QPointer<QMenu> menu = MenuPresenter::popUp(std::move(made), window, {0, 20});
        EXPECT_TRUE(screen.contains(menu->geometry())) << rows;
        EXPECT_LT(menu->width(), 200) << "in one column";
        menu->close();
    }
}

TEST_F(PopupMenuButtonTest, ItemsThatWentWhileTheMenuWasOpenAreNotCalled)
{
    button->showMenu();
    QAction *third = button->menu()->actions().at(2);
    button->setItems({item("Only")});
    third->trigger();
    EXPECT_TRUE(chosen.empty());
}

TEST_F(PopupMenuButtonTest, AnActionMayTakeTheButtonAway)
{
    auto items = button->items();
    items[0].action = [this] { delete std::exchange(button, nullptr); };
    button->setItems(items);
    button->showMenu();
    const QPointer<QMenu> menu = button->menu();
    menu->setActiveAction(menu->actions().at(0));
    pressKey(*menu, Qt::Key_Return);
    EXPECT_FALSE(button);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(menu);
}

TEST_F(PopupMenuButtonTest, ItsMenuClosesWithIt)
{
    button->showMenu();
    window.hide();
    EXPECT_FALSE(MenuPresenter::isMenuOpen());
    button->showMenu();
    EXPECT_FALSE(MenuPresenter::isMenuOpen()) << "an invisible button opens no menu";
}

TEST_F(PopupMenuButtonTest, TellsAssistiveProgramsWhatItIs)
{
    button->setTitle(s("Español"));
    button->setHelp(s("Translate to"));
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::ButtonMenu);
    EXPECT_EQ(accessible->text(QAccessible::Name), s("Translate to: Español"));
    EXPECT_TRUE(accessible->state().hasPopup);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(button->menu());
    EXPECT_TRUE(accessible->state().expanded);
}

TEST(IconButton, AtMostOneIsHighlighted)
{
    QWidget window;
    IconButton first(QSize(22, 22), &window), second(&window);
    window.show();
    enter(first);
    EXPECT_TRUE(first.isHighlighted());
    enter(second);
    EXPECT_FALSE(first.isHighlighted());
    leave(first);
    EXPECT_TRUE(second.isHighlighted());
    second.setEnabled(false);
    EXPECT_FALSE(second.isHighlighted());
}

TEST(IconButton, WorksByPointerAndKeyboardAndLeavesTheFocusToTexts)
{
    QWidget window;
    IconButton button(QSize(24, 22), &window);
    button.setHelp(s("Copy"));
    window.show();
    int clicks = 0;
    QObject::connect(&button, &IconButton::clicked, &button, [&] { ++clicks; });
    clickOn(button);
    EXPECT_FALSE(button.hasFocus());
    pressKey(button, Qt::Key_Return);
    pressKey(button, Qt::Key_Space);
    EXPECT_EQ(clicks, 3);
    button.setEnabled(false);
    clickOn(button);
    EXPECT_EQ(clicks, 3);
    EXPECT_EQ(button.size(), QSize(24, 22));

    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(&button);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::Button);
    EXPECT_EQ(accessible->text(QAccessible::Name), s("Copy"));
}

} // namespace
} // namespace tovi
