// SPDX-License-Identifier: MIT
#pragma once
#include "Platform/Accessibility.h"
#include <optional>
namespace tovi::MenuBarCopyCapturer {
std::optional<AXElement> findCopyItem();
}
