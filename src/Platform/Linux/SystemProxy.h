// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include <QByteArray>
#include <QUrl>

namespace tovi::SystemProxy {

/// The proxy in libcurl's notation, empty to go without; none to do as the environment's variables say.
using Handler = std::function<void(const std::optional<QByteArray> &proxy)>;

/// Asks the desktop's settings; servers on this machine are reached without. The handler is called once: at
/// once on this thread where the desktop has none, else from a thread of its own, for the desktop may have to
/// run a script or ask a server. Any thread.
void find(const QUrl &url, Handler handler);

} // namespace tovi::SystemProxy
