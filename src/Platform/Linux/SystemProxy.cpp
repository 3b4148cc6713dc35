// SPDX-License-Identifier: MIT
#include "Platform/Linux/SystemProxy.h"

#include <thread>

// GLib's headers use a word that Qt defines away.
#undef signals
#include <gio/gio.h>

namespace tovi {

namespace {

/// libcurl reads these itself, with their list of exceptions.
bool isSetInEnvironment()
{
    for (const char *name : {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        if (!qEnvironmentVariableIsEmpty(name))
            return true;
    }
    return false;
}

bool isThisMachine(const QString &host)
{
    return host == QLatin1String("localhost") || host == QLatin1String("::1") ||
           host.startsWith(QLatin1String("127."));
}

QByteArray lookUp(GProxyResolver *resolver, const QByteArray &url)
{
    gchar **found = g_proxy_resolver_lookup(resolver, url.constData(), nullptr, nullptr);
    QByteArray proxy;
    if (found && found[0]) {
        const QByteArray first(found[0]);
        if (first.startsWith("socks://"))
            proxy = "socks5h" + first.mid(5);
        else if (!first.startsWith("direct://"))
            proxy = first;
    }
    g_strfreev(found);
    return proxy;
}

} // namespace

void SystemProxy::find(const QUrl &url, Handler handler)
{
    if (isThisMachine(url.host())) {
        handler(QByteArray());
        return;
    }
    GProxyResolver *resolver = isSetInEnvironment() ? nullptr : g_proxy_resolver_get_default();
    if (!resolver || !g_proxy_resolver_is_supported(resolver)) {
        handler(std::nullopt);
        return;
    }
    // Of the address the desktop gets no more than it needs to choose: never the text in a query.
    const QByteArray origin =
        url.adjusted(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment)
            .toEncoded();
    // Not a pooled thread: at quit nobody waits for a script that hangs.
    std::thread([resolver, origin, handler = std::move(handler)] {
        handler(lookUp(resolver, origin));
    }).detach();
}

} // namespace tovi
