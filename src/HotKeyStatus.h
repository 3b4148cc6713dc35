// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>
#include <QString>

#include "Platform/Observable.h"

namespace tovi {

/// What came of the last registration of the three shortcuts. Main thread.
class HotKeyStatus : public Observable
{
public:
    /// In registration order.
    enum class Slot { capture, ocr, input };
    static QString rawValue(Slot slot);

    static HotKeyStatus &shared();

    Published<QSet<Slot>> failed{this, {}};     ///< refused by the system
    Published<QSet<Slot>> duplicates{this, {}}; ///< assigned to more than one action
};

} // namespace tovi
