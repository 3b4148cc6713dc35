// SPDX-License-Identifier: MIT
#include "Capture/AccessibilityCapturer.h"

#include <limits>

#include <gtest/gtest.h>

#include "Support/TestPlatform.h"

namespace tovi {
namespace {

using Element = std::shared_ptr<TestElement>;

const AXResult absent{AXError::AttributeUnsupported, {}};
const AXResult markers{AXError::None, AXTextMarkerRange{std::make_shared<int>(1)}};
const AXResult range{AXError::None, AXRange{3, 5}};

AXResult text(const QString &value)
{
    return {AXError::None, value};
}

Element make(std::map<QString, AXResult> attributes)
{
    const auto element = std::make_shared<TestElement>();
    element->attributes = std::move(attributes);
    return element;
}

/// Answers a parameterised attribute only when asked with `expected`.
void answer(const Element &element, const QString &name, const AXResult &expected, const AXResult &result)
{
    element->parameterized[name] = [expected, result](const AXValue &parameter) {
        return parameter == expected.value ? result : AXResult{AXError::CannotComplete, {}};
    };
}

class AccessibilityCapturerTest : public testing::Test
{
protected:
    TestPlatform platform;
    TestElement &systemWide = *platform.accessibility().systemWide;
};

TEST_F(AccessibilityCapturerTest, SelectedTextComesFromTheTextElseFromTheMarkers)
{
    const QString blank = QStringLiteral(" \t\n\u00A0\u2028\u3000");
    const QString padded = QStringLiteral("\n two\nlines \n");
    const struct
    {
        const char *name;
        AXResult selectedText, markerRange, markerText;
        std::optional<QString> expected;
    } rows[] = {
        {"plain, untrimmed", text(padded), absent, absent, padded},
        {"text before markers", text(padded), markers, text(QStringLiteral("web")), padded},
        {"empty text, markers", text({}), markers, text(padded), padded},
        {"blank text, markers", text(blank), markers, text(padded), padded},
        {"no text, markers", absent, markers, text(padded), padded},
        {"mistyped text, markers", range, markers, text(padded), padded},
        {"timed out", {AXError::TimedOut, padded}, {AXError::TimedOut, markers.value}, text(padded), {}},
        {"blank everywhere", text(blank), markers, text(blank), {}},
        {"range of another type", absent, range, text(padded), {}},
        {"marker text of another type", absent, markers, range, {}},
        {"nothing", absent, absent, absent, {}},
    };
    for (const auto &row : rows) {
        const auto element = make({{QStringLiteral("AXSelectedText"), row.selectedText},
                                   {QStringLiteral("AXSelectedTextMarkerRange"), row.markerRange}});
        answer(element, QStringLiteral("AXStringForTextMarkerRange"), row.markerRange, row.markerText);
        EXPECT_EQ(AccessibilityCapturer::selectedText(AXElement(element)), row.expected) << row.name;
    }
}

TEST_F(AccessibilityCapturerTest, FocusedElementIsLimitedInTime)
{
    const auto focused = make({});
    systemWide.attributes[QStringLiteral("AXFocusedUIElement")] = {AXError::None, AXElement(focused)};
    EXPECT_EQ(AccessibilityCapturer::focusedElement(), AXElement(focused));
    EXPECT_EQ(systemWide.timeout, std::chrono::milliseconds(250));
    EXPECT_EQ(focused->timeout, std::chrono::milliseconds(250));

    const AXResult useless[] = {{AXError::NotTrusted, AXElement(focused)},
                                {AXError::None, {}},
                                {AXError::None, AXElement()},
                                text(QStringLiteral("no element"))};
    for (const AXResult &result : useless) {
        systemWide.attributes[QStringLiteral("AXFocusedUIElement")] = result;
        EXPECT_FALSE(AccessibilityCapturer::focusedElement());
    }
}

TEST_F(AccessibilityCapturerTest, BoundsAreFlippedAndMustHaveAnArea)
{
    const auto rect = [](double x, double y, double w, double h) {
        return AXResult{AXError::None, QRectF(x, y, w, h)};
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct
    {
        const char *name;
        AXResult range, bounds;
        double primaryHeight;
        std::optional<QRectF> expected;
    } rows[] = {
        {"on the primary screen", range, rect(10, 20, 100, 30), 900, QRectF(10, 850, 100, 30)},
        {"on a screen above it", range, rect(10, -500, 100, 30), 900, QRectF(10, 1370, 100, 30)},
        {"no screen", range, rect(10, 20, 100, 30), 0, QRectF(10, -50, 100, 30)},
        {"spanned backwards", range, rect(110, 50, -100, -30), 900, QRectF(10, 850, 100, 30)},
        {"collapsed", range, rect(10, 20, 100, 0), 900, {}},
        {"not a number", range, rect(10, nan, 100, 30), 900, {}},
        {"no range", absent, rect(10, 20, 100, 30), 900, {}},
        {"range of another type", markers, rect(10, 20, 100, 30), 900, {}},
        {"bounds of another type", range, range, 900, {}},
        {"timed out", range, {AXError::TimedOut, QRectF(10, 20, 100, 30)}, 900, {}},
    };
    for (const auto &row : rows) {
        const auto element = make({{QStringLiteral("AXSelectedTextRange"), row.range}});
        answer(element, QStringLiteral("AXBoundsForRange"), row.range, row.bounds);
        EXPECT_EQ(AccessibilityCapturer::selectionBounds(AXElement(element), row.primaryHeight), row.expected)
            << row.name;
    }
}

TEST_F(AccessibilityCapturerTest, LooksAtTheElementUnderThePointAndThreeAncestors)
{
    for (int holder = 0; holder <= 4; ++holder) {
        QList<Element> chain;
        for (int i = 0; i <= 5; ++i) {
            chain << make({});
            if (i > 0)
                chain[i - 1]->attributes[QStringLiteral("AXParent")] = {AXError::None, AXElement(chain[i])};
        }
        chain[holder]->attributes[QStringLiteral("AXSelectedText")] = text(QStringLiteral("found"));
        chain[holder]->attributes[QStringLiteral("AXSelectedTextRange")] = range;
        answer(chain[holder], QStringLiteral("AXBoundsForRange"), range,
               {AXError::None, QRectF(0, 0, 10, 20)});
        systemWide.atPosition = {AXError::None, AXElement(chain[0])};
        systemWide.positions.clear();

        const auto selection = AccessibilityCapturer::selectedText(QPointF(12.5, 850), 900);
        EXPECT_EQ(systemWide.positions, QList<QPointF>{QPointF(12.5, 50)});
        ASSERT_EQ(selection.has_value(), holder < 4) << holder;
        if (selection) {
            EXPECT_EQ(selection->text, QStringLiteral("found"));
            EXPECT_EQ(selection->element, AXElement(chain[holder]));
            EXPECT_EQ(selection->bounds, QRectF(0, 880, 10, 20));
            EXPECT_EQ(chain[holder]->timeout, std::chrono::milliseconds(250));
        }
        EXPECT_TRUE(chain[4]->requests.isEmpty()) << holder;
    }
}

TEST_F(AccessibilityCapturerTest, TheWalkEndsWhereTheChainDoes)
{
    EXPECT_FALSE(AccessibilityCapturer::selectedText(QPointF(1, 1), 900));
    const AXResult parents[] = {absent, text(QStringLiteral("no element")), {AXError::None, AXElement()}};
    for (const AXResult &parent : parents) {
        systemWide.atPosition = {AXError::None, AXElement(make({{QStringLiteral("AXParent"), parent}}))};
        EXPECT_FALSE(AccessibilityCapturer::selectedText(QPointF(1, 1), 900));
    }
}

} // namespace
} // namespace tovi
