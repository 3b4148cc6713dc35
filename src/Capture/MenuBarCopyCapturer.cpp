// SPDX-License-Identifier: MIT
#include "Capture/MenuBarCopyCapturer.h"
namespace tovi::MenuBarCopyCapturer {
std::optional<AXElement> findCopyItem()
{
    return {};
}
} // namespace tovi::MenuBarCopyCapturer
