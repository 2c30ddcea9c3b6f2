#pragma once

#include <curl/curl.h>

namespace Norvik::Host {

/// The functions of libcurl that the agent uses. The library is loaded at their first use: it
/// brings some forty others, which take more time than all else in the start of a command, and most
/// commands and an agent without a server need none of them. It stays loaded.
struct CurlLibrary {
  decltype(&curl_easy_cleanup) easyCleanup;
  decltype(&curl_easy_getinfo) easyGetInfo;
  decltype(&curl_easy_init) easyInit;
  decltype(&curl_easy_perform) easyPerform;
  decltype(&curl_easy_reset) easyReset;
  decltype(&curl_easy_setopt) easySetOption;
  decltype(&curl_easy_strerror) easyTextOfError;
  decltype(&curl_getdate) getDate;
  decltype(&curl_global_init) globalInit;
  decltype(&curl_slist_append) listAppend;
  decltype(&curl_slist_free_all) listFree;
  decltype(&curl_version) version;
  decltype(&curl_version_info) versionInfo;
};

/// The file of the library on this system, as the loader finds it.
extern const char* const CURL_FILE;

/// The library, initialised. Throws `std::runtime_error` if it cannot be loaded or set up; the next
/// call tries again. Any thread may call it.
const CurlLibrary& Curl();

}  // namespace Norvik::Host
