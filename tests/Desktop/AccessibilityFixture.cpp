// SPDX-License-Identifier: MIT
#include "Desktop/AccessibilityFixture.h"

#include <QElapsedTimer>

#include "Platform/X11/XcbActiveWindow.h"
#include "Platform/X11/XcbPrimarySelection.h"

void PrintTo(const QString &text, std::ostream *stream)
{
    *stream << '"' << text.toStdString() << '"';
}

namespace tovi {

namespace {

constexpr std::chrono::milliseconds messagingTimeout{250};

AXElement withTimeout(const AXElement &element)
{
    element.setMessagingTimeout(messagingTimeout);
    return element;
}

double millisecondsSince(QElapsedTimer &timer)
{
    const double elapsed = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    timer.restart();
    return elapsed;
}

/// The selected text of one element, as the capturer reads it.
AXResult selectedText(const AXElement &element, bool *byMarkerRange)
{
    const AXResult plain = element.attribute(QStringLiteral("AXSelectedText"));
    const auto *text = plain.get<QString>();
    if (text && !text->trimmed().isEmpty())
        return plain;
    const AXResult range = element.attribute(QStringLiteral("AXSelectedTextMarkerRange"));
    if (range.error != AXError::None)
        return plain.error == AXError::None ? range : plain;
    *byMarkerRange = true;
    return element.parameterizedAttribute(QStringLiteral("AXStringForTextMarkerRange"), range.value);
}

Captured captureOnce(Accessibility &service)
{
    Captured captured;
    QElapsedTimer timer;
    timer.start();
    const AXResult focused =
        withTimeout(service.systemWideElement()).attribute(QStringLiteral("AXFocusedUIElement"));
    captured.focusMilliseconds = millisecondsSince(timer);
    captured.error = focused.error;
    const auto *element = focused.get<AXElement>();
    if (!element)
        return captured;
    withTimeout(*element);
    const AXResult text = selectedText(*element, &captured.byMarkerRange);
    captured.textMilliseconds = millisecondsSince(timer);
    captured.error = text.error;
    if (const auto *value = text.get<QString>())
        captured.text = *value;
    const AXResult range = element->attribute(QStringLiteral("AXSelectedTextRange"));
    if (range.error == AXError::None) {
        const AXResult bounds =
            element->parameterizedAttribute(QStringLiteral("AXBoundsForRange"), range.value);
        if (const auto *rectangle = bounds.get<QRectF>())
            captured.bounds = *rectangle;
    }
    captured.boundsMilliseconds = millisecondsSince(timer);
    return captured;
}

} // namespace

AccessibilityDesktop::AccessibilityDesktop(const DesktopSession::Options &options)
    : desktop(std::make_unique<DesktopSession>(options))
    , accessibility(std::make_unique<AtspiAccessibility>(std::make_shared<XcbActiveWindow>(),
                                                         std::make_shared<XcbPrimarySelection>()))
    , queue(std::make_unique<DispatchQueue>(QStringLiteral("capture")))
{}

AccessibilityDesktop::~AccessibilityDesktop() = default;

void AccessibilityDesktop::SetUp()
{
    ASSERT_EQ(desktop->error(), QString());
}

Captured AccessibilityDesktop::capture()
{
    return onQueue([this] { return captureOnce(*accessibility); });
}

Captured AccessibilityDesktop::captureUntil(const QString &expected)
{
    Captured captured;
    DesktopSession::eventually([&] {
        captured = capture();
        return captured.text == expected;
    });
    return captured;
}

bool AccessibilityDesktop::waitForAccessibleFocus()
{
    return DesktopSession::eventually([this] {
        return onQueue([this] {
            const AXResult focused = withTimeout(accessibility->systemWideElement())
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
        AXResult found = withTimeout(accessibility->systemWideElement())
                             .elementAtPosition(float(position.x()), float(position.y()));
        for (int i = 0; i < 4; ++i) {
            const auto *element = found.get<AXElement>();
            if (!element)
                break;
            bool byMarkerRange = false;
            const AXResult text = selectedText(withTimeout(*element), &byMarkerRange);
            if (const auto *value = text.get<QString>())
                return *value;
            found = element->attribute(QStringLiteral("AXParent"));
        }
        return QString();
    });
}

void AccessibilityDesktop::print(const char *application, const Captured &captured)
{
    std::printf("%s: focus %.1f ms, text %.1f ms%s, bounds %.1f ms\n", application,
                captured.focusMilliseconds, captured.textMilliseconds,
                captured.byMarkerRange ? " (marker range)" : "", captured.boundsMilliseconds);
}

} // namespace tovi
