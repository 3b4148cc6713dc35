// SPDX-License-Identifier: MIT
#include "Platform/Linux/CurlLibrary.h"

#include "Platform/Linux/ResolveFunction.h"

namespace tovi {

namespace {

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
    const bool isComplete = resolveFunction(library, globalInit, "curl_global_init") &&
                            resolveFunction(library, curl.easyInit, "curl_easy_init") &&
                            resolveFunction(library, curl.easyCleanup, "curl_easy_cleanup") &&
                            resolveFunction(library, curl.easySetOption, "curl_easy_setopt") &&
                            resolveFunction(library, curl.easyGetInfo, "curl_easy_getinfo") &&
                            resolveFunction(library, curl.easyPause, "curl_easy_pause") &&
                            resolveFunction(library, curl.listAppend, "curl_slist_append") &&
                            resolveFunction(library, curl.listFree, "curl_slist_free_all") &&
                            resolveFunction(library, curl.multiInit, "curl_multi_init") &&
                            resolveFunction(library, curl.multiCleanup, "curl_multi_cleanup") &&
                            resolveFunction(library, curl.multiAdd, "curl_multi_add_handle") &&
                            resolveFunction(library, curl.multiRemove, "curl_multi_remove_handle") &&
                            resolveFunction(library, curl.multiPerform, "curl_multi_perform") &&
                            resolveFunction(library, curl.multiPoll, "curl_multi_poll") &&
                            resolveFunction(library, curl.multiWakeup, "curl_multi_wakeup") &&
                            resolveFunction(library, curl.multiInfoRead, "curl_multi_info_read");
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
