// SPDX-License-Identifier: MIT
#include "Capture/MenuBarCopyCapturer.h"

#include <gtest/gtest.h>

#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using Element = std::shared_ptr<TestElement>;

AXResult text(const char *value)
{
    return {AXError::None, QString::fromUtf8(value)};
}

Element element(const char *role, const QList<Element> &children = {})
{
    auto made = std::make_shared<TestElement>();
    made->attributes[QStringLiteral("AXRole")] = text(role);
    QList<AXElement> list;
    for (const Element &child : children)
        list << AXElement(child);
    made->attributes[QStringLiteral("AXChildren")] = {AXError::None, list};
    return made;
}

Element copyItem()
{
    const Element item = element("AXMenuItem");
    item->attributes[QStringLiteral("AXMenuItemCmdChar")] = text("c");
    item->attributes[QStringLiteral("AXTitle")] = text("Copy");
    return item;
}

class MenuBarCopyCapturerTest : public testing::Test
{
protected:
    MenuBarCopyCapturerTest()
    {
        platform.workspace().frontmost = RunningApplication{{}, {}, 7};
        platform.accessibility().applications[7] = AXElement(application);
    }
    void setMenus(const QList<Element> &menus)
    {
        application->attributes[QStringLiteral("AXMenuBar")] = {AXError::None,
                                                                AXElement(element("AXMenuBar", menus))};
    }
    /// Whether the search ends with this item, or with none.
    bool finds(const Element &item)
    {
        const auto found = MenuBarCopyCapturer::findCopyItem();
        return item ? found == AXElement(item) : !found;
    }

    TestPlatform platform;
    Element application = std::make_shared<TestElement>();
};

TEST_F(MenuBarCopyCapturerTest, LooksWhereCopyUsuallyIsFirst)
{
    EXPECT_EQ(MenuBarCopyCapturer::searchOrder(0), QList<qsizetype>());
    EXPECT_EQ(MenuBarCopyCapturer::searchOrder(3), (QList<qsizetype>{2, 1, 0}));
    EXPECT_EQ(MenuBarCopyCapturer::searchOrder(9), (QList<qsizetype>{3, 2, 4, 1, 5, 0, 6, 7, 8}));

    QList<Element> items, menus;
    for (int i = 0; i < 5; ++i) {
        items << copyItem();
        menus << element("AXMenuItem", {element("AXMenu", {items.last(), copyItem()})});
    }
    setMenus(menus);
    EXPECT_TRUE(finds(items[3]));
    EXPECT_TRUE(items[2]->requests.isEmpty());
    EXPECT_EQ(application->timeout, std::chrono::milliseconds(500));
    EXPECT_EQ(items[3]->timeout, std::chrono::milliseconds(500));
}

TEST_F(MenuBarCopyCapturerTest, WhatMakesAnItemTheCopyItem)
{
    const AXResult absent{AXError::AttributeUnsupported, {}};
    const AXResult no{AXError::None, false};
    const struct
    {
        AXResult role, identifier, character, title, enabled;
        bool isCopyItem;
    } rows[] = {
        {text("AXMenuItem"), absent, text("C"), text("Copy"), absent, true},
        {text("AXMenuItem"), absent, text("c"), text("コピー"), text("no boolean"), true},
        {text("AXMenuItem"), text("other:"), text("C"), text("Копировать"), {AXError::TimedOut, false}, true},
        {text("AXMenuItem"), absent, text("C"), text("Copy"), no, false},
        {text("AXMenuItem"), text("copy:"), absent, text("Másolás"), absent, true},
        {text("AXMenuItem"), absent, text("C"), text("Másolás"), absent, false},
        {text("AXMenuItem"), absent, text("C"), text("copy"), absent, false},
        {text("AXMenuItem"), absent, text("X"), text("Copy"), absent, false},
        {text("AXMenuItem"), absent, absent, text("Copy"), absent, false},
        {text("AXMenu"), text("copy:"), text("C"), text("Copy"), absent, false},
    };
    for (const auto &row : rows) {
        const Element item = element("");
        item->attributes = {{QStringLiteral("AXRole"), row.role},
                            {QStringLiteral("AXIdentifier"), row.identifier},
                            {QStringLiteral("AXMenuItemCmdChar"), row.character},
                            {QStringLiteral("AXTitle"), row.title},
                            {QStringLiteral("AXEnabled"), row.enabled}};
        setMenus({element("AXMenu", {item})});
        EXPECT_TRUE(finds(row.isCopyItem ? item : nullptr)) << &row - rows;
    }
}

TEST_F(MenuBarCopyCapturerTest, SearchesSevenLevelsBelowTheMenus)
{
    for (const int levels : {0, 7, 8}) {
        const Element item = copyItem();
        Element menu = item;
        for (int i = 0; i < levels; ++i)
            menu = element("AXMenu", {element("AXMenuItem"), menu}); // an item without anything comes before
        setMenus({element("AXMenu"), menu});
        EXPECT_TRUE(finds(levels <= 7 ? item : nullptr)) << levels;
    }
}

TEST_F(MenuBarCopyCapturerTest, AnApplicationThatHangsCostsTheLimitOnce)
{
    const Element hanging = element("AXMenu"), slow = element("AXMenu", {element("AXMenuItem")}),
                  item = copyItem();
    hanging->attributes[QStringLiteral("AXChildren")] = {AXError::TimedOut, {}};
    setMenus({element("AXMenu", {item}), hanging});
    EXPECT_TRUE(finds(nullptr)) << "no answer";
    EXPECT_TRUE(item->requests.isEmpty());

    // All answers together take too long.
    slow->onRequest = [this](const QString &) { platform.clock().advance(std::chrono::milliseconds(800)); };
    setMenus({element("AXMenu", {item}), slow});
    EXPECT_TRUE(finds(nullptr)) << "slow answers";
    EXPECT_EQ(slow->timeout, std::chrono::milliseconds(500));
    EXPECT_TRUE(item->requests.isEmpty());
}

} // namespace
} // namespace tovi
