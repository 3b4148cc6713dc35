// SPDX-License-Identifier: MIT
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

#include "HotKey.h"

namespace tovi {
namespace {

TEST(HotKey, ShowsModifiersInFixedOrderThenTheKey)
{
    const struct
    {
        HotKey key;
        QString text;
    } cases[] = {
        {{2, HotKey::option}, QStringLiteral("⌥D")},
        {{17, 256 + 512 + 2048 + 4096}, QStringLiteral("⌃⌥⇧⌘T")},
        {{105, HotKey::command}, QStringLiteral("⌘Key105")},
        {{49, HotKey::control | HotKey::shift}, QStringLiteral("⌃⇧Space")},
        {{42, HotKey::command}, QStringLiteral("⌘\\")},
        {{121, HotKey::command | 1}, QStringLiteral("⌘⇟")},
        {{0, HotKey::option}, QStringLiteral("—")},
        {{2, 0}, QStringLiteral("—")},
    };
    for (const auto &[key, text] : cases)
        EXPECT_EQ(key.displayString(), text);
}

TEST(HotKey, TakesOnlyItsModifiers)
{
    EXPECT_EQ(HotKey::carbonModifiers(Qt::ControlModifier | Qt::KeypadModifier | Qt::AltModifier),
              256u + 2048);
}

TEST(HotKey, DecodesOnlyWholeNumbersInRange)
{
    const HotKey key{4294967295u, 2048};
    EXPECT_EQ(HotKey::fromJson(key.toJson()), key);
    for (const char *json : {"[]", "{}", R"({"keyCode":2})", R"({"keyCode":2,"modifiers":"2048"})",
                             R"({"keyCode":-1,"modifiers":1})", R"({"keyCode":1.5,"modifiers":1})",
                             R"({"keyCode":true,"modifiers":1})", R"({"keyCode":1e300,"modifiers":1})",
                             R"({"keyCode":4294967296,"modifiers":1})"}) {
        const QJsonDocument document = QJsonDocument::fromJson(json);
        const QJsonValue value = document.isArray() ? QJsonValue(document.array()) : document.object();
        EXPECT_FALSE(HotKey::fromJson(value)) << json;
    }
}

} // namespace
} // namespace tovi
