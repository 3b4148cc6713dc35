// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <QString>
#include <qcorotask.h>

#include "Platform/Observable.h"
#include "ProviderConfig.h"

namespace tovi {

/// What came of the last test of an engine.
struct ProviderTestState
{
    enum class Kind { idle, running, success, failure };

    Kind kind = Kind::idle;
    QString message; ///< of a success or failure, as the user reads it

    bool operator==(const ProviderTestState &) const = default;
};

/// The test that a pane shares with its editors. Main thread.
class ProviderTest : public Observable
{
public:
    /// One translation with the engine as it stands in the settings, else with this record. Never throws.
    static QCoro::Task<> run(std::shared_ptr<ProviderTest> test, ProviderConfig config);

    Published<ProviderTestState> state{this, {}};
};

} // namespace tovi
