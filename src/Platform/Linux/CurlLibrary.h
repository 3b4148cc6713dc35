// SPDX-License-Identifier: MIT
#pragma once

#include <curl/curl.h>

namespace tovi {

/// The functions of libcurl. The library and what it pulls in cost 5 MB, so it is loaded for the first
/// request and not with the program.
struct CurlLibrary
{
    /// Null when the library is not installed. Any thread.
    static const CurlLibrary *load();

    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_easy_setopt) easySetOption = nullptr;
    decltype(&curl_easy_getinfo) easyGetInfo = nullptr;
    decltype(&curl_easy_pause) easyPause = nullptr;
    decltype(&curl_slist_append) listAppend = nullptr;
    decltype(&curl_slist_free_all) listFree = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
    decltype(&curl_multi_add_handle) multiAdd = nullptr;
    decltype(&curl_multi_remove_handle) multiRemove = nullptr;
    decltype(&curl_multi_perform) multiPerform = nullptr;
    decltype(&curl_multi_poll) multiPoll = nullptr;
    decltype(&curl_multi_wakeup) multiWakeup = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
};

} // namespace tovi
