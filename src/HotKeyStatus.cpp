// SPDX-License-Identifier: MIT
#include "HotKeyStatus.h"

#include "Platform/Platform.h"

namespace tovi {

QString HotKeyStatus::rawValue(Slot slot)
{
    switch (slot) {
    case Slot::capture:
        return QStringLiteral("capture");
    case Slot::ocr:
        return QStringLiteral("ocr");
    case Slot::input:
        break;
    }
    return QStringLiteral("input");
}

HotKeyStatus &HotKeyStatus::shared()
{
    return Platform::current().shared<HotKeyStatus>();
}

} // namespace tovi
