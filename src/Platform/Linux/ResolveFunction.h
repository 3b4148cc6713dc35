// SPDX-License-Identifier: MIT
#pragma once

#include <QLibrary>

namespace tovi {

/// Looks up a function of a loaded library; false when the library has none of this name.
template <class Function>
bool resolveFunction(QLibrary &library, Function &function, const char *name)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function;
}

} // namespace tovi
