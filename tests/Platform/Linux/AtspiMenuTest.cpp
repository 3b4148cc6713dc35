// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "Capture/MenuBarCopyCapturer.h"
#include "Platform/Linux/AtspiMenuElement.h"
#include "Platform/Linux/FakeAtspiPeer.h"
#include "Platform/Linux/MenuItemText.h"
#include "Support/CapturedSelection.h"
#include "Support/TestPlatform.h"

namespace tovi {
namespace {

TEST(MenuItemTextTest, TitlesLoseMarksAndPadding)
{
    const struct
    {
        const char *name, *title;
    } rows[] = {
        {"_Copy", "Copy"},
        {"&Copy\tCtrl+C", "Copy"},
        {"复制(_C)      ", "复制"},
        {"複製（C）", "複製"},
        {"Cut && __ Paste", "Cut & _ Paste"},
        {"R&D &", "RD &"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(MenuItemText::title(QString::fromUtf8(row.name)), QString::fromUtf8(row.title));
}

TEST(MenuItemTextTest, OnlyBindingsWithControlHaveACharacter)
{
    const struct
    {
        const char *binding, *character;
    } rows[] = {
        {"c;<Alt>e:c;<Primary>c", "C"},
        {"c;<Alt>e:c;<Alt>c", nullptr},
        {"Strg+C", "C"},
        {"Ctrl+Ins;Ctrl+C", "C"},
        {"Ctrl+K, Ctrl+C", nullptr},
        {"Alt+C", nullptr},
        {"Ctrl++", nullptr},
        {"", nullptr},
    };
    for (const auto &row : rows) {
        const auto character = MenuItemText::commandCharacter(QString::fromUtf8(row.binding));
        EXPECT_EQ(character.value_or(QString()), QString::fromUtf8(row.character)) << row.binding;
    }
    EXPECT_FALSE(
        MenuItemText::commandCharacter(QString(1 << 20, QLatin1Char(';')) + QLatin1String("Ctrl+C")));
}

/// An application with a window, a panel in it, a menu bar in that, and one menu with one item.
class AtspiMenuTest : public AtspiTest
{
protected:
    void SetUp() override
    {
        AtspiTest::SetUp();
        platform.workspace().frontmost = RunningApplication{{}, {}, ::getpid()};
        platform.accessibility().applications = {{::getpid(), application}};
        describe();
    }
    void describe()
    {
        peer.clearAnswers();
        const struct
        {
            const char *path;
            unsigned role;
            const char *child;
        } objects[] = {
            {"/window", 23, "/panel"},
            {"/panel", 39, "/bar"},
            {"/bar", 34, "/menu"},
            {"/menu", 33, "/item"},
        };
        for (const auto &object : objects) {
            const QString path = QString::fromLatin1(object.path);
            peer.answer(path, QStringLiteral("GetRole"), {object.role});
            peer.answer(path, QStringLiteral("GetChildren"),
                        {peer.references({QString::fromLatin1(object.child)})});
        }
        peer.answer(QStringLiteral("/menu"), QStringLiteral("AccessibleId"), {QStringLiteral("edit")});
        item("GetRole", {35U});
        item("GetChildren", {peer.references({})});
        item("Name", {QStringLiteral("_Copy  ")});
        item("AccessibleId", {QStringLiteral("copy:")});
        item("GetKeyBinding", {QStringLiteral("c;<Alt>e:c;<Primary>c")});
        item("GetState", {FakeAtspiPeer::states({8, 24})});
        peer.answer(QStringLiteral("/item"), QStringLiteral("GetName"), [](const QDBusMessage &call) {
            const QStringList names{QStringLiteral("ShowMenu"), QStringLiteral("Press")};
            return QVariantList{names.value(call.arguments().value(0).toInt())};
        });
        peer.answer(QStringLiteral("/item"), QStringLiteral("DoAction"), [this](const QDBusMessage &call) {
            done << call.arguments().value(0).toInt();
            return QVariantList{true};
        });
    }
    void item(const char *member, const QVariantList &values)
    {
        peer.answer(QStringLiteral("/item"), QString::fromLatin1(member), values);
    }

    /// As the capture finds it, which gives each question half a second: more than once for slow machines.
    std::optional<AXElement> copyItem(bool isThere)
    {
        std::optional<AXElement> item;
        for (int i = 0; i == 0 || (isThere && !item && i < 60); ++i)
            item = onQueue([] { return MenuBarCopyCapturer::findCopyItem(); });
        return item;
    }
    AXError press(const AXElement &item)
    {
        return onQueue([=] { return withTimeout(item, generous).performAction(QStringLiteral("AXPress")); });
    }
    /// The menus of the bar.
    AXResult menus()
    {
        return onQueue([this] {
            const AXResult bar = withTimeout(application, generous).attribute(QStringLiteral("AXMenuBar"));
            const auto *element = bar.get<AXElement>();
            return element ? withTimeout(*element, generous).attribute(QStringLiteral("AXChildren")) : bar;
        });
    }
    static qsizetype count(const AXResult &elements)
    {
        const auto *list = elements.get<QList<AXElement>>();
        return list ? list->size() : -1;
    }

    static constexpr std::chrono::seconds generous{20};
    TestPlatform platform;
    QList<int> done;
    const AXElement application{std::make_shared<AtspiApplicationElement>(context, ::getpid())};
};

TEST_F(AtspiMenuTest, TheCopyItemIsFoundAndPressed)
{
    const QVariantList nonsense{QVariant::fromValue(QStringList{QStringLiteral("nonsense")})};
    const struct
    {
        const char *name;
        std::vector<std::pair<const char *, QVariantList>> answers;
        bool isFound;
    } rows[] = {
        {"by its identifier", {{"Name", nonsense}, {"GetKeyBinding", nonsense}}, true},
        {"by key and title", {{"AccessibleId", {QString()}}}, true},
        {"with a check mark", {{"GetRole", {8U}}}, true},
        {"does not tell whether it is enabled", {{"GetState", nonsense}}, true},
        {"disabled", {{"GetState", {FakeAtspiPeer::states({25})}}}, false},
        {"no key", {{"AccessibleId", nonsense}, {"GetKeyBinding", nonsense}}, false},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        describe();
        for (const auto &[member, values] : row.answers)
            item(member, values);
        const auto found = copyItem(row.isFound);
        ASSERT_EQ(found.has_value(), row.isFound);
        if (!found)
            continue;
        done.clear();
        EXPECT_EQ(press(*found), AXError::None);
        EXPECT_EQ(done, QList<int>{1}) << "pressed, not opened";
        item("DoAction", {false});
        EXPECT_EQ(press(*found), AXError::CannotComplete);
        item("GetName", nonsense);
        EXPECT_EQ(press(*found), AXError::CannotComplete);
    }
}

TEST_F(AtspiMenuTest, EndlessTreesAreSearchedWithinBounds)
{
    for (const char *path : {"/panel", "/bar"}) {
        SCOPED_TRACE(path);
        describe();
        int asked = 0;
        const QString wide = QString::fromLatin1(path);
        peer.answer({}, QStringLiteral("GetRole"), {39U});
        peer.answer({}, QStringLiteral("GetChildren"), [&](const QDBusMessage &call) {
            if (call.path().startsWith(QLatin1String("/org")))
                return QVariantList{peer.references({QStringLiteral("/application")})};
            if (call.path() == QLatin1String("/application"))
                return QVariantList{peer.references({QStringLiteral("/window")})};
            ++asked;
            return QVariantList{peer.references({call.path() + QStringLiteral("/x"), call.path()})};
        });
        peer.answer(wide, QStringLiteral("GetChildren"),
                    {peer.references(QStringList(500, QStringLiteral("/more")))});
        EXPECT_EQ(count(menus()), wide == QLatin1String("/bar") ? 200 : -1);
        EXPECT_LT(asked, 300);
    }
}

TEST_F(AtspiMenuTest, ABarInsideADocumentIsNotLookedFor)
{
    EXPECT_EQ(count(menus()), 1);
    peer.answer(QStringLiteral("/panel"), QStringLiteral("GetRole"), {95U});
    EXPECT_EQ(menus().error, AXError::NoValue);
}

} // namespace
} // namespace tovi
