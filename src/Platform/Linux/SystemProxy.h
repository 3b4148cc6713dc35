// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <QByteArray>
#include <QUrl>

namespace tovi::SystemProxy {

/// The proxy in libcurl's notation, empty to go without or as the environment's variables say.
using Handler = std::function<void(const QByteArray &proxy)>;

/// Asks the desktop's settings. The handler is called once: at once on this thread where the desktop has
/// none, else from a thread of its own, for the desktop may have to run a script or ask a server. Any thread.
void find(const QUrl &url, Handler handler);

} // namespace tovi::SystemProxy
