// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <unistd.h>

#include "Platform/DispatchQueue.h"
#include "Platform/Linux/AtspiMenuElement.h"
#include "Platform/Linux/FakeAtspiPeer.h"
#include "Platform/Linux/MenuItemText.h"
#include "Support/CapturedSelection.h"
#include "Support/TestClock.h"

namespace tovi {
namespace {

TEST(MenuItemTextTest, TitlesLoseMarksAndPadding)
{
    const struct
    {
        const char *name, *title;
    } rows[] = {
        {"Copy      ", "Copy"},
        {"_Copy", "Copy"},
        {"&Copy\tCtrl+C", "Copy"},
        {"Kop&ieren", "Kopieren"},
        {"复制(C)", "复制"},
        {"复制(_C)      ", "复制"},
        {"コピー(&C)", "コピー"},
        {"複製（C）", "複製"},
        {"복사 (C)", "복사"},
        {"Cut && __ Paste", "Cut & _ Paste"},
        {"Save _As (now)", "Save As (now)"},
        {"(C)", "(C)"},
        {"R&D &", "RD &"},
        {"", ""},
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
        {"n;<Alt>f:n;<Primary><Shift>n", "N"},
        {"<Control>c", "C"},
        {"c;<Alt>e:c;", nullptr},
        {"c;<Alt>e:c;<Alt>c", nullptr},
        {"<Primary>Insert", nullptr},
        {"Ctrl+C", "C"},
        {"Strg+C", "C"},
        {"Control+C", "C"},
        {"Ctrl+Shift+C", "C"},
        {"Ctrl+Ins;Ctrl+C", "C"},
        {"Ctrl+K, Ctrl+C", nullptr},
        {"Alt+C", nullptr},
        {"C", nullptr},
        {"Ctrl+", nullptr},
        {"Ctrl++", nullptr},
        {"<Primary", nullptr},
        {"", nullptr},
    };
    for (const auto &row : rows) {
        const auto character = MenuItemText::commandCharacter(QString::fromUtf8(row.binding));
        EXPECT_EQ(character.value_or(QString()), QString::fromUtf8(row.character)) << row.binding;
    }
    EXPECT_FALSE(
        MenuItemText::commandCharacter(QString(1 << 20, QLatin1Char(';')) + QLatin1String("Ctrl+C")));
}

/// How another program's one item looks through its menu bar.
struct SeenItem
{
    AXError barError = AXError::None;
    qsizetype menus = 0;
    QString role, identifier, character, title;
    AXResult enabled;
    AXError pressed = AXError::None;
};

struct OwnWindow final : ActiveWindowSource
{
    std::optional<ActiveWindow> activeWindow() override { return ActiveWindow{::getpid(), {}, 1}; }
};

/// An application with a window, a panel in it, a menu bar in that, and one menu with one item.
class AtspiMenuTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(peer.start());
        context->client = std::make_shared<AtspiClient>([this] { return peer.address(); });
        context->activeWindow = std::make_shared<OwnWindow>();
        describe();
    }
    void describe()
    {
        peer.clearAnswers();
        const struct
        {
            const char *path;
            unsigned role;
            QStringList children;
        } objects[] = {
            {"/window", 23, {QStringLiteral("/text"), QStringLiteral("/panel")}},
            {"/panel", 39, {QStringLiteral("/bar")}},
            {"/bar", 34, {QStringLiteral("/menu")}},
            {"/menu", 33, {QStringLiteral("/item")}},
            {"/item", 35, {}},
        };
        for (const auto &object : objects) {
            const QString path = QString::fromLatin1(object.path);
            peer.answer(path, QStringLiteral("GetRole"), {object.role});
            peer.answer(path, QStringLiteral("GetChildren"), {peer.references(object.children)});
        }
        peer.answer(QStringLiteral("/menu"), QStringLiteral("AccessibleId"), {QStringLiteral("edit")});
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

    template <class Fn>
    auto onQueue(Fn work)
    {
        auto future = queue.run(std::move(work));
        EXPECT_TRUE(waitUntil([&] { return future.isFinished(); }));
        return future.result();
    }
    AXElement application()
    {
        return AXElement(std::make_shared<AtspiApplicationElement>(context, ::getpid()));
    }
    static AXResult children(const AXElement &element, Clock::Duration timeout)
    {
        return withTimeout(element, timeout).attribute(QStringLiteral("AXChildren"));
    }
    static SeenItem lookAt(const AXElement &application, Clock::Duration timeout,
                           Clock::Duration pressTimeout)
    {
        SeenItem seen;
        const AXResult bar = withTimeout(application, timeout).attribute(QStringLiteral("AXMenuBar"));
        seen.barError = bar.error;
        const auto *barElement = bar.get<AXElement>();
        if (!barElement)
            return seen;
        const AXResult menus = children(*barElement, timeout);
        const auto *menuList = menus.get<QList<AXElement>>();
        seen.barError = menus.error;
        seen.menus = menuList ? menuList->size() : -1;
        const AXResult items = seen.menus > 0 ? children(menuList->first(), timeout) : AXResult{};
        const auto *itemList = items.get<QList<AXElement>>();
        if (!itemList || itemList->isEmpty())
            return seen;
        const AXElement item = withTimeout(itemList->first(), timeout);
        const auto text = [&item](const char *name) {
            const AXResult result = item.attribute(QString::fromLatin1(name));
            const auto *value = result.get<QString>();
            return value ? *value : QString();
        };
        seen.role = text("AXRole");
        seen.identifier = text("AXIdentifier");
        seen.character = text("AXMenuItemCmdChar");
        seen.title = text("AXTitle");
        seen.enabled = item.attribute(QStringLiteral("AXEnabled"));
        seen.pressed = withTimeout(item, pressTimeout).performAction(QStringLiteral("AXPress"));
        return seen;
    }
    SeenItem look(std::chrono::milliseconds timeout = std::chrono::seconds(20),
                  std::chrono::milliseconds pressTimeout = std::chrono::seconds(20))
    {
        return onQueue([=, this] { return lookAt(application(), timeout, pressTimeout); });
    }

    FakeAtspiPeer peer;
    QList<int> done;
    std::shared_ptr<AtspiContext> context = std::make_shared<AtspiContext>();
    DispatchQueue queue{QStringLiteral("requests")};
};

TEST_F(AtspiMenuTest, TellsWhatAnItemIsAndPressesIt)
{
    SeenItem seen = look();
    EXPECT_EQ(seen.barError, AXError::None);
    EXPECT_EQ(seen.role, QStringLiteral("AXMenuItem"));
    EXPECT_EQ(seen.identifier, QStringLiteral("copy:"));
    EXPECT_EQ(seen.character, QStringLiteral("C"));
    EXPECT_EQ(seen.title, QStringLiteral("Copy"));
    EXPECT_EQ(seen.enabled.value, AXValue(true));
    EXPECT_EQ(seen.pressed, AXError::None);
    EXPECT_EQ(done, QList<int>{1}) << "pressed, not opened";

    item("GetState", {FakeAtspiPeer::states({25})});
    item("DoAction", {false});
    item("GetRole", {8U});
    seen = look();
    EXPECT_EQ(seen.role, QStringLiteral("AXMenuItem")) << "one with a check mark";
    EXPECT_EQ(seen.enabled.value, AXValue(false));
    EXPECT_EQ(seen.pressed, AXError::CannotComplete);
}

TEST_F(AtspiMenuTest, NonsenseIsNoValue)
{
    for (const char *member :
         {"AccessibleId", "GetKeyBinding", "Name", "GetState", "GetRole", "GetName", "DoAction"})
        item(member, {QVariant::fromValue(QStringList{QStringLiteral("nonsense")})});
    const SeenItem seen = look();
    EXPECT_EQ(seen.role, QStringLiteral("AXUnknown"));
    EXPECT_EQ(seen.identifier + seen.character + seen.title, QString());
    EXPECT_NE(seen.enabled.error, AXError::None);
    EXPECT_EQ(seen.pressed, AXError::CannotComplete);

    peer.answer(QStringLiteral("/bar"), QStringLiteral("GetChildren"), {7});
    EXPECT_EQ(look().menus, 0);
    peer.answer(QStringLiteral("/bar"), QStringLiteral("GetRole"), {QStringLiteral("bar")});
    EXPECT_EQ(look().barError, AXError::NoValue);
}

TEST_F(AtspiMenuTest, ABarInsideADocumentIsNotLookedFor)
{
    peer.answer(QStringLiteral("/panel"), QStringLiteral("GetRole"), {95U});
    int opened = 0;
    peer.answer(QStringLiteral("/panel"), QStringLiteral("GetChildren"), [&](const QDBusMessage &) {
        ++opened;
        return QVariantList{peer.references({QStringLiteral("/bar")})};
    });
    EXPECT_EQ(look().barError, AXError::NoValue);
    EXPECT_EQ(opened, 0);
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
        const SeenItem seen = look();
        const bool isBar = wide == QLatin1String("/bar");
        EXPECT_EQ(seen.barError, isBar ? AXError::None : AXError::NoValue);
        EXPECT_EQ(seen.menus, isBar ? 200 : 0);
        EXPECT_LT(asked, 300);
    }
}

TEST_F(AtspiMenuTest, AStalledApplicationEndsTheRequestAndTheNextOneWorks)
{
    const struct
    {
        const char *path, *member;
        bool hasBar;
    } rows[] = {
        {"/window", "GetChildren", false}, {"/bar", "GetRole", false}, {"/menu", "GetChildren", false},
        {"/item", "GetKeyBinding", true},  {"/item", "Name", true},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.member);
        peer.answer(QString::fromLatin1(row.path), QString::fromLatin1(row.member),
                    [](const QDBusMessage &) { return std::nullopt; });
        const SeenItem seen = look(std::chrono::milliseconds(50));
        EXPECT_EQ(seen.title, QString());
        EXPECT_TRUE(row.hasBar || seen.barError == AXError::TimedOut);
        describe();
        EXPECT_EQ(look().title, QStringLiteral("Copy"));
    }
    peer.answer(QStringLiteral("/item"), QStringLiteral("DoAction"),
                [](const QDBusMessage &) { return std::nullopt; });
    EXPECT_EQ(look(std::chrono::seconds(20), std::chrono::milliseconds(50)).pressed, AXError::TimedOut);
}

} // namespace
} // namespace tovi
