// SPDX-License-Identifier: MIT
#pragma once

#include <QProcessEnvironment>

/// Environment variables that only this process is meant to see. Main thread.
namespace tovi::OwnEnvironment {

void set(const char *name, const char *value);

/// What programs that we start get: the environment as it was before.
QProcessEnvironment forOtherPrograms();

} // namespace tovi::OwnEnvironment
