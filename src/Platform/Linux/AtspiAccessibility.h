// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <QPointF>
#include <QRectF>

#include "Platform/Accessibility.h"
#include "Platform/Linux/ActiveWindow.h"
#include "Platform/Linux/PrimarySelection.h"

namespace tovi {

class AccessibilityBus;
class AtspiClient;

/// How the pixels that applications report map to accessibility coordinates (points, origin top-left of the
/// primary screen). Called on the thread of a request.
struct AccessibilityScale
{
    std::function<QRectF(const QRectF &pixels)> toPoints = [](const QRectF &pixels) { return pixels; };
    std::function<QPointF(const QPointF &point)> toPixels = [](const QPointF &point) { return point; };
};

/// What the elements of the desktop's accessibility service share.
struct AtspiContext
{
    std::shared_ptr<AtspiClient> client;
    std::shared_ptr<ActiveWindowSource> activeWindow;
    std::shared_ptr<PrimarySelection> primarySelection;
    AccessibilityScale scale;
};

/// Accessibility over AT-SPI2. Where the frontmost application tells no text, its focused element is one that
/// answers with the desktop's primary selection, if that application owns it. Made and destroyed on the main
/// thread; elements may outlive it on theirs and then answer NotTrusted.
class AtspiAccessibility final : public Accessibility
{
public:
    AtspiAccessibility(std::shared_ptr<ActiveWindowSource> activeWindow,
                       std::shared_ptr<PrimarySelection> primarySelection, AccessibilityScale scale = {});
    ~AtspiAccessibility() override;

    bool isProcessTrusted() override;
    void requestTrust() override;
    AXElement systemWideElement() override;
    AXElement applicationElement(qint64 processIdentifier) override;

private:
    std::unique_ptr<AccessibilityBus> m_bus;
    std::shared_ptr<AtspiContext> m_context;
};

} // namespace tovi
