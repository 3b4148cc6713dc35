// SPDX-License-Identifier: MIT
#include "Desktop/AccessibilityFixture.h"

#include "Platform/X11/FrontWindow.h"
#include "Platform/X11/XcbPrimarySelection.h"

namespace tovi {

AccessibilityDesktop::AccessibilityDesktop()
    : desktop(std::make_unique<DesktopSession>())
    , accessibility(std::make_unique<AtspiAccessibility>(std::make_shared<FrontWindow>(),
                                                         std::make_shared<XcbPrimarySelection>()))
    , queue(std::make_unique<DispatchQueue>(QStringLiteral("capture")))
{}

AccessibilityDesktop::~AccessibilityDesktop() = default;

void AccessibilityDesktop::SetUp()
{
    ASSERT_EQ(desktop->error(), QString());
    // Most applications join the accessibility bus only if it is on when they start.
    EXPECT_FALSE(accessibility->isProcessTrusted());
    accessibility->requestTrust();
    ASSERT_TRUE(DesktopSession::eventually([this] { return accessibility->isProcessTrusted(); }));
}

Captured AccessibilityDesktop::capture()
{
    return onQueue([this] { return captureSelection(accessibility->systemWideElement(), patience); });
}

Captured AccessibilityDesktop::captureUntil(const QString &expected, std::chrono::seconds limit)
{
    Captured captured;
    DesktopSession::eventually(
        [&] {
            captured = capture();
            return captured.text == expected;
        },
        limit);
    return captured;
}

bool AccessibilityDesktop::waitForAccessibleFocus()
{
    return DesktopSession::eventually([this] {
        return onQueue([this] {
            const AXResult focused = withTimeout(accessibility->systemWideElement(), patience)
                                         .attribute(QStringLiteral("AXFocusedUIElement"));
            const auto *element = focused.get<AXElement>();
            const AXError error =
                element ? element->attribute(QStringLiteral("AXSelectedTextRange")).error : focused.error;
            return error == AXError::None || (element && error == AXError::NoValue);
        });
    });
}

QString AccessibilityDesktop::textAt(QPoint position)
{
    return onQueue([this, position] {
        AXResult found = withTimeout(accessibility->systemWideElement(), patience)
                             .elementAtPosition(float(position.x()), float(position.y()));
        for (int i = 0; i < 4; ++i) {
            const auto *element = found.get<AXElement>();
            if (!element)
                break;
            bool byMarkerRange = false;
            const AXResult text = selectedText(withTimeout(*element, patience), &byMarkerRange);
            if (const auto *value = text.get<QString>())
                return *value;
            found = element->attribute(QStringLiteral("AXParent"));
        }
        return QString();
    });
}

} // namespace tovi
