// SPDX-License-Identifier: MIT
#include "Platform/Linux/CurlLibrary.h"

#include <QLibrary>

namespace tovi {

namespace {

template <class Function>
bool resolve(QLibrary &library, Function &function, const char *name)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function;
}

std::optional<CurlLibrary> loadFunctions()
{
    // The two builds that the distributions ship have the same interface.
    QLibrary library(QStringLiteral("curl"), 4);
    if (!library.load()) {
        library.setFileNameAndVersion(QStringLiteral("curl-gnutls"), 4);
        library.load();
    }
    CurlLibrary curl;
    decltype(&curl_global_init) globalInit = nullptr;
    const bool isComplete = resolve(library, globalInit, "curl_global_init") &&
                            resolve(library, curl.easyInit, "curl_easy_init") &&
                            resolve(library, curl.easyCleanup, "curl_easy_cleanup") &&
                            resolve(library, curl.easySetOption, "curl_easy_setopt") &&
                            resolve(library, curl.easyGetInfo, "curl_easy_getinfo") &&
                            resolve(library, curl.easyPause, "curl_easy_pause") &&
                            resolve(library, curl.listAppend, "curl_slist_append") &&
                            resolve(library, curl.listFree, "curl_slist_free_all") &&
                            resolve(library, curl.multiInit, "curl_multi_init") &&
                            resolve(library, curl.multiCleanup, "curl_multi_cleanup") &&
                            resolve(library, curl.multiAdd, "curl_multi_add_handle") &&
                            resolve(library, curl.multiRemove, "curl_multi_remove_handle") &&
                            resolve(library, curl.multiPerform, "curl_multi_perform") &&
                            resolve(library, curl.multiPoll, "curl_multi_poll") &&
                            resolve(library, curl.multiWakeup, "curl_multi_wakeup") &&
                            resolve(library, curl.multiInfoRead, "curl_multi_info_read");
    if (!isComplete || globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK)
        return std::nullopt;
    return curl;
}

} // namespace

const CurlLibrary *CurlLibrary::load()
{
    static const std::optional<CurlLibrary> library = loadFunctions();
    return library ? &*library : nullptr;
}

} // namespace tovi
