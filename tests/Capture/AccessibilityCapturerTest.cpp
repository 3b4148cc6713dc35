// SPDX-License-Identifier: MIT
#include "Capture/AccessibilityCapturer.h"

#include <gtest/gtest.h>

#include "Support/TestPlatform.h"

namespace tovi {
namespace {

const AXResult absent{AXError::AttributeUnsupported, {}};
const AXResult markers{AXError::None, AXTextMarkerRange{std::make_shared<int>(1)}};
const AXResult range{AXError::None, AXRange{3, 5}};
const QString name = QStringLiteral("AXSelectedText");

AXResult text(const QString &value)
{
    return {AXError::None, value};
}

/// An element whose parameterised attribute answers only when asked with the range that it gave.
std::shared_ptr<TestElement> element(const QString &rangeName, const AXResult &given,
                                     const QString &askedName, const AXResult &result)
{
    auto made = std::make_shared<TestElement>();
    made->attributes[rangeName] = given;
    made->parameterized[askedName] = [given, result](const AXValue &parameter) {
        return parameter == given.value ? result : AXResult{AXError::CannotComplete, {}};
    };
    return made;
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
        AXResult selectedText, markerRange, markerText;
        std::optional<QString> expected;
    } rows[] = {
        {text(padded), markers, text(QStringLiteral("web")), padded},
        {text(blank), markers, text(padded), padded},
        {absent, markers, text(padded), padded},
        {range, markers, text(padded), padded},
        {{AXError::TimedOut, padded}, {AXError::TimedOut, markers.value}, text(padded), {}},
        {text({}), markers, text(blank), {}},
        {absent, range, text(padded), {}},
        {absent, markers, range, {}},
    };
    for (const auto &row : rows) {
        const auto candidate = element(QStringLiteral("AXSelectedTextMarkerRange"), row.markerRange,
                                       QStringLiteral("AXStringForTextMarkerRange"), row.markerText);
        candidate->attributes[name] = row.selectedText;
        EXPECT_EQ(AccessibilityCapturer::selectedText(AXElement(candidate)), row.expected) << &row - rows;
    }
}

TEST_F(AccessibilityCapturerTest, BoundsAreFlippedAndMustHaveAnArea)
{
    const struct
    {
        AXResult range, bounds;
        double primaryHeight;
        std::optional<QRectF> expected;
    } rows[] = {
        {range, {AXError::None, QRectF(10, 20, 100, 30)}, 900, QRectF(10, 850, 100, 30)},
        {range, {AXError::None, QRectF(10, -500, 100, 30)}, 900, QRectF(10, 1370, 100, 30)}, // screen above
        {range, {AXError::None, QRectF(110, 50, -100, -30)}, 0, QRectF(10, -50, 100, 30)},
        {range, {AXError::None, QRectF(10, 20, 100, 0)}, 900, {}},
        {range, {AXError::None, QRectF(10, qQNaN(), 100, 30)}, 900, {}},
        {range, {AXError::TimedOut, QRectF(10, 20, 100, 30)}, 900, {}},
        {range, range, 900, {}},
        {markers, {AXError::None, QRectF(10, 20, 100, 30)}, 900, {}},
    };
    for (const auto &row : rows) {
        const auto candidate = element(QStringLiteral("AXSelectedTextRange"), row.range,
                                       QStringLiteral("AXBoundsForRange"), row.bounds);
        EXPECT_EQ(AccessibilityCapturer::selectionBounds(AXElement(candidate), row.primaryHeight),
                  row.expected)
            << &row - rows;
    }
}

TEST_F(AccessibilityCapturerTest, LooksAtTheElementUnderThePointAndThreeAncestors)
{
    for (int holder = 0; holder <= 4; ++holder) {
        std::vector<std::shared_ptr<TestElement>> chain{std::make_shared<TestElement>()};
        while (chain.size() < 6) {
            const auto parent = std::make_shared<TestElement>();
            chain.back()->attributes[QStringLiteral("AXParent")] = {AXError::None, AXElement(parent)};
            chain.push_back(parent);
        }
        chain[holder]->attributes[name] = text(QStringLiteral("found"));
        systemWide.atPosition = {AXError::None, AXElement(chain[0])};

        const auto selection = AccessibilityCapturer::selectedText(QPointF(12.5, 850), 900);
        EXPECT_EQ(systemWide.positions.last(), QPointF(12.5, 50));
        ASSERT_EQ(selection.has_value(), holder < 4) << holder;
        EXPECT_TRUE(!selection || selection->element == AXElement(chain[holder]));
        EXPECT_EQ(chain[std::min(holder, 3)]->timeout, std::chrono::milliseconds(250));
        EXPECT_TRUE(chain[4]->requests.isEmpty());
    }
}

TEST_F(AccessibilityCapturerTest, AnEmptyElementIsNone)
{
    systemWide.attributes[QStringLiteral("AXFocusedUIElement")] = {AXError::None, AXElement()};
    EXPECT_FALSE(AccessibilityCapturer::focusedElement());
}

} // namespace
} // namespace tovi
