// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Platform/Linux/FakeAtspiPeer.h"
#include "Support/CapturedSelection.h"

namespace tovi {
namespace {

struct FixedSelection final : PrimarySelection
{
    Answer read(const ActiveWindow &, QDeadlineTimer) override
    {
        return {Status::Text, QStringLiteral("primary")};
    }
};

/// Requests to an application that a test scripts, over a real bus.
class AtspiElementTest : public AtspiTest
{
protected:
    void SetUp() override
    {
        AtspiTest::SetUp();
        context->primarySelection = std::make_shared<FixedSelection>();
    }
    AXElement systemWide() { return AXElement(std::make_shared<AtspiSystemWideElement>(context)); }
    Captured capture()
    {
        return onQueue([this] { return captureSelection(systemWide(), std::chrono::seconds(20)); });
    }
    AXError errorOfFocus(std::chrono::milliseconds timeout)
    {
        return onQueue([this, timeout] {
            const AXElement element = systemWide();
            element.setMessagingTimeout(timeout);
            return element.attribute(QStringLiteral("AXFocusedUIElement")).error;
        });
    }
    /// As applications answer whose focused text embeds objects, each made by `link`.
    void embed(const QString &text, std::function<QString(const QDBusMessage &)> link)
    {
        peer.answer({}, QStringLiteral("GetNSelections"), {1});
        peer.answer({}, QStringLiteral("GetSelection"), {0, int(text.size())});
        peer.answer({}, QStringLiteral("CharacterCount"), {int(text.size())});
        peer.answer({}, QStringLiteral("GetText"), {text});
        peer.answer({}, QStringLiteral("GetLink"), [this, link](const QDBusMessage &call) {
            return QVariantList{peer.reference(link(call))};
        });
        peer.answer({}, QStringLiteral("GetObject"),
                    [this](const QDBusMessage &call) { return QVariantList{peer.reference(call.path())}; });
    }
};

TEST_F(AtspiElementTest, ReadsTextAndBoundsOfAPlainText)
{
    const Captured captured = capture();
    EXPECT_EQ(captured.text, QStringLiteral("Hello"));
    EXPECT_FALSE(captured.byMarkerRange);
    ASSERT_TRUE(captured.bounds);
    EXPECT_EQ(*captured.bounds, QRectF(10, 20, 300, 40));
}

TEST_F(AtspiElementTest, WithoutTextTheWindowAnswersWithThePrimarySelection)
{
    peer.answer({}, QStringLiteral("GetNSelections"), {QStringLiteral("one")});
    Captured captured = capture();
    EXPECT_EQ(captured.text, QStringLiteral("primary"));
    EXPECT_FALSE(captured.bounds);
    peer.answer({}, QStringLiteral("GetNSelections"), QVariantList{0});
    captured = capture();
    EXPECT_EQ(captured.text, QString()) << "it tells its text, and nothing is selected";
    EXPECT_EQ(captured.error, AXError::NoValue);
}

TEST_F(AtspiElementTest, NonsenseIsNoValue)
{
    struct Case
    {
        const char *member;
        QVariantList values;
        const char *text;
    };
    const int most = std::numeric_limits<int>::max();
    const int least = std::numeric_limits<int>::min();
    const Case cases[] = {
        {"GetChildren", {QStringLiteral("no list")}, "primary"},
        {"GetState", {42}, "primary"},
        {"GetState", {QVariant::fromValue(QList<uint>())}, "primary"},
        {"ChildCount", {most}, "primary"},
        {"GetSelection", {most, least}, ""},
        {"GetSelection", {QStringLiteral("a"), 1}, ""},
        {"GetText", {7}, ""},
        {"GetRangeExtents", {most, most, most, most}, "Hello"},
        {"GetRangeExtents", {least, least, 1, 1}, "Hello"},
    };
    for (const Case &one : cases) {
        SCOPED_TRACE(one.member);
        peer.clearAnswers();
        peer.answer({}, QString::fromLatin1(one.member), one.values);
        const Captured captured = capture();
        EXPECT_EQ(captured.text, QString::fromLatin1(one.text));
        EXPECT_FALSE(captured.bounds);
    }
}

TEST_F(AtspiElementTest, ATextBeyondAllBoundsIsNoText)
{
    peer.answer({}, QStringLiteral("GetText"), {QString(17 << 20, QLatin1Char('x'))});
    EXPECT_EQ(capture().text, QString());
}

TEST_F(AtspiElementTest, EndlessTreesAreWalkedWithinBounds)
{
    int made = 0;
    peer.answer({}, QStringLiteral("GetState"), {FakeAtspiPeer::states({25})});
    peer.answer({}, QStringLiteral("GetChildren"), [&](const QDBusMessage &call) {
        if (call.path().startsWith(QLatin1String("/org")))
            return QVariantList{peer.references({QStringLiteral("/application")})};
        if (call.path() == QLatin1String("/application"))
            return QVariantList{peer.references({QStringLiteral("/window")})};
        // Itself, its parent, and ever new ones.
        return QVariantList{
            peer.references({call.path(), QStringLiteral("/window"), call.path() + QStringLiteral("/x"),
                             QStringLiteral("/n%1").arg(++made)})};
    });
    EXPECT_NE(errorOfFocus(std::chrono::seconds(20)), AXError::TimedOut);
    EXPECT_GT(made, 20);
}

TEST_F(AtspiElementTest, EmbeddedObjectsMayBeMissingCyclicOrEndless)
{
    const QChar object(0xFFFC);
    const QString text = QStringLiteral("a") + object + QStringLiteral("b");
    embed(text, [](const QDBusMessage &call) { return call.path(); });
    EXPECT_EQ(capture().text, QStringLiteral("ab")) << "embeds itself";

    embed(text, [](const QDBusMessage &call) { return call.path() + QStringLiteral("/x"); });
    EXPECT_EQ(capture().text, QString()) << "embeds without end";

    embed(text, [](const QDBusMessage &call) { return call.path(); });
    peer.answer({}, QStringLiteral("GetLink"), {QStringLiteral("none")});
    EXPECT_EQ(capture().text, QStringLiteral("ab")) << "there is no such link";

    embed(QString(100000, object), [](const QDBusMessage &call) { return call.path(); });
    EXPECT_EQ(capture().text, QString()) << "more objects than are asked";
}

TEST_F(AtspiElementTest, TheLimitHoldsForAllCallsOfARequestTogether)
{
    EXPECT_EQ(errorOfFocus(std::chrono::seconds(20)), AXError::None);
    peer.delay = std::chrono::milliseconds(120);
    EXPECT_EQ(errorOfFocus(std::chrono::milliseconds(250)), AXError::TimedOut);
    peer.delay = {};
    EXPECT_EQ(errorOfFocus(std::chrono::seconds(20)), AXError::None);
}

TEST_F(AtspiElementTest, AStalledApplicationEndsTheRequestAndTheNextOneWorks)
{
    for (const char *member : {"GetMatches", "GetChildren", "GetState", "GetNSelections"}) {
        SCOPED_TRACE(member);
        peer.answer({}, QString::fromLatin1(member), [](const QDBusMessage &) { return std::nullopt; });
        EXPECT_EQ(errorOfFocus(std::chrono::milliseconds(50)), AXError::TimedOut);
        peer.clearAnswers();
        EXPECT_EQ(errorOfFocus(std::chrono::seconds(20)), AXError::None);
    }
}

TEST_F(AtspiElementTest, RecoversWhenTheBusWasRestarted)
{
    EXPECT_EQ(capture().text, QStringLiteral("Hello"));
    peer.stopBus();
    EXPECT_EQ(capture().text, QStringLiteral("primary")) << "which needs no bus";
    ASSERT_TRUE(peer.start());
    EXPECT_EQ(capture().text, QStringLiteral("Hello"));
}

} // namespace
} // namespace tovi
