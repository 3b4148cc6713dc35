// SPDX-License-Identifier: MIT
#pragma once

namespace tovi {

/// Makes SIGTERM, SIGINT and SIGHUP end the event loop as Quit does. Main thread, once.
void quitOnUnixSignals();

} // namespace tovi
